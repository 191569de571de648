// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/fetch.h"

#include "framework/exceptions.h"
#include "support/WebServer.h"

#include <gtest/gtest.h>

namespace quilvane {

namespace {

using Ending = WebServer::Ending;

std::string redirection(const std::string& target)
{
    return "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\nLocation: " + target + "\r\n\r\n";
}

class FetchTest : public testing::Test {
protected:
    FetchTest()
    {
        setenv("no_proxy", "*", 1);
        options.authoritiesFile = server.authoritiesFile();
        options.stallTimeout = std::chrono::seconds(1);
        options.connectTimeout = std::chrono::seconds(5);
        options.largestBody = 100'000;
    }

    /// What the exception says of why; empty if there is none.
    std::string failure(const std::string& url) const
    {
        try {
            fetch(url, options);
            return {};
        } catch (const ConnectionException& error) {
            return error.what();
        }
    }

    WebServer server;
    WebServer plain{ WebServer::Scheme::Http };
    FetchOptions options;
};

} // namespace

TEST_F(FetchTest, bodies)
{
    const std::string gzipped(
        "\x1f\x8b\x08\0\0\0\0\0\x02\x03\xab\x70\xa8\xd4\xcb\x2f\x4a\x07\0\x7f\x72\xc8\x74\x07\0\0\0", 27);
    const std::string page = "<p>x@y.org\r\n\0\xFF";
    server.page("/page", page);
    server.page("/gzip", gzipped, "Content-Encoding: gzip\r\n");
    server.answer("/chunked",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nx@y\r\n4;x=y\r\n.org\r\n0\r\n\r\n");
    server.answer("/old", "HTTP/1.0 200 OK\r\n\r\nx@y.org");
    server.answer("/cut", "HTTP/1.1 200 OK\r\n\r\nx@y.org", Ending::CutOff);
    server.answer("/missing", "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\ngone");
    server.page("/empty", "");
    server.page("/full", std::string(100'000, 'x'));
    server.answer("/redirect", redirection("/page"));
    plain.answer("/insecure", redirection(server.url("/redirect")));

    const std::pair<std::string, std::string> cases[] = {
        { server.url("/page"), page },
        { server.url("/page").substr(8), page }, // no scheme
        { "HTTPS" + server.url("/page#part").substr(5), page },
        { server.url("/gzip"), "x@y.org" },
        { server.url("/chunked"), "x@y.org" },
        { server.url("/old"), "x@y.org" },
        { server.url("/cut"), "x@y.org" }, // many servers end like that
        { server.url("/missing"), "gone" },
        { server.url("/empty"), "" },
        { server.url("/full"), std::string(100'000, 'x') },
        { server.url("/redirect"), page },
        { plain.url("/insecure"), page },
    };
    for (const auto& [url, body] : cases)
        EXPECT_EQ(fetch(url, options).body, body) << url;
    EXPECT_EQ(fetch(plain.url("/insecure"), options).url, server.url("/page"));
}

TEST_F(FetchTest, failuresNameTheAddressAndTheReason)
{
    const std::string begin = "HTTP/1.1 200 OK\r\n";
    server.answer("/short", begin + "Content-Length: 10\r\n\r\nx@y.org");
    server.answer("/silent", begin, Ending::Stall);
    server.answer("/stalled", begin + "Content-Length: 10\r\n\r\nx", Ending::Stall);
    server.answer("/endless", begin + "\r\nx", Ending::Endless);
    server.answer("/loop", redirection("/loop"));
    server.answer("/file", redirection("file:///etc/passwd"));
    server.page("/large", std::string(100'001, 'x'));
    server.page("/damaged", "no archive", "Content-Encoding: gzip\r\n");

    struct Case {
        std::string url;
        std::string reason;
    };
    const Case cases[] = {
        { "   ", "no valid web address" },
        { "https://", "no valid web address" },
        { "https://a b/", "no valid web address" },
        { std::string("127.0.0.1\0.org", 14), "no valid web address" },
        { "ftp://127.0.0.1/", "only http and https" },
        { "file:///etc/passwd", "only http and https" },
        { server.url("/file"), "only http and https" },
        { "https://" + std::string(64, 'a') + ".invalid/", "no such host" }, // no name server is asked for it
        { "https://127.0.0.1:1/", "Connection refused" },
        { server.url("/page", "localhost"), "certificate" },
        { server.url("/short"), "broke off" },
        { server.url("/unknown"), "broke off" },
        { server.url("/silent"), "did not answer in time" },
        { server.url("/stalled"), "stopped sending" },
        { server.url("/endless"), "larger than 100000 bytes" },
        { server.url("/large"), "larger than 100000 bytes" },
        { server.url("/loop"), "without an end" },
        { server.url("/damaged"), "compressed content" },
    };
    for (const Case& c : cases) {
        const std::string what = failure(c.url);
        EXPECT_NE(what.find(c.reason), std::string::npos) << c.url << ": " << what;
        EXPECT_NE(what.find(c.url.substr(0, c.url.find('\0')).substr(0, 60)), std::string::npos) << what;
    }
    options.authoritiesFile.clear();
    EXPECT_NE(failure(server.url("/page")).find("certificate"), std::string::npos)
        << "signed by nobody known";
}

TEST_F(FetchTest, aRequestToStopEndsTheTransferAtOnce)
{
    server.answer("/stalled", "HTTP/1.1 200 OK\r\n\r\nx", Ending::Stall);
    options.stallTimeout = std::chrono::hours(1);
    std::stop_source source;
    std::jthread stopper([&] {
        while (server.requests().empty())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        source.request_stop();
    });
    EXPECT_THROW(fetch(server.url("/stalled"), options, source.get_token()), ConnectionException);
}

TEST_F(FetchTest, longBodiesOfUnknownLengthComeWhole)
{
    // Beyond what the buffer holds in one part.
    std::string body;
    while (body.size() < 150'000'000)
        body += std::to_string(body.size()) + '\n';
    server.answer("/long", "HTTP/1.0 200 OK\r\n\r\n" + body);
    options.largestBody = body.size();
    EXPECT_TRUE(fetch(server.url("/long"), options).body == body);
}

} // namespace quilvane
