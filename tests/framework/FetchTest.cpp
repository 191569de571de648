// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/fetch.h"

#include "framework/exceptions.h"
#include "support/Scoped.h"
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
        options.authoritiesFile = server.authoritiesFile();
        options.stallTimeout = std::chrono::seconds(1);
        options.connectTimeout = std::chrono::seconds(5);
        options.largestBody = 100'000;
    }

    /// The message of the exception; empty if there is none.
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

private:
    Scoped m_noProxy = environmentVariable("no_proxy", "*");
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
        { " \t\xC2\xA0" + server.url("/page") + "\n ", page }, // as it was copied
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
        EXPECT_EQ(fetch(url, options), body) << url;
}

TEST_F(FetchTest, failuresNameTheAddressAndTheReason)
{
    const std::string begin = "HTTP/1.1 200 OK\r\n";
    server.answer("/short", begin + "Content-Length: 10\r\n\r\nx@y.org");
    server.answer("/silent", begin, Ending::Stall);
    server.answer("/stalled", begin + "Content-Length: 10\r\n\r\nx", Ending::Stall);
    server.answer("/endless", begin + "\r\nx", Ending::Endless);
    server.answer("/loop", redirection("/loop"));
    server.answer("/ftp", redirection("ftp://127.0.0.1/"));
    server.page("/large", std::string(100'001, 'x'));
    server.page("/damaged", "no archive", "Content-Encoding: gzip\r\n");
    server.answer("/insecure", redirection(plain.url("/page")));
    plain.answer("/toAndFro", redirection(server.url("/insecure")));
    plain.page("/page", "x@y.org");
    std::string lines;
    while (lines.size() < 300'000)
        lines += "X-Line: " + std::string(1000, 'x') + "\r\n";
    server.answer("/headers", begin + lines + "\r\nx");
    server.answer("/header", begin + "X-Line: " + std::string(200'000, 'x') + "\r\n\r\nx");
    server.answer("/trailers", begin + "Transfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\n" + lines + "\r\n");
    server.answer("/chunks", begin + "Transfer-Encoding: chunked\r\n\r\nno number\r\n");
    server.answer("/noHttp", "220 mail.example.org ready\r\n");
    server.answer("/toNoHttp", redirection("/noHttp"));
    server.answer("/noVersion", "HTTP/9.9 200 OK\r\n\r\nx");
    server.answer("/headersCut", begin + "Content-Type: text/html\r\n");
    server.answer("/secondHeadersCut", "HTTP/1.1 103 Early Hints\r\n\r\n" + begin);

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
        { server.url("/ftp"), "only http and https" },
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
        { server.url("/insecure"), "one that is not" },
        { plain.url("/toAndFro"), "one that is not" },
        { server.url("/headers"), "headers are too long" },
        { server.url("/header"), "headers are too long" },
        { server.url("/trailers"), "headers are too long" },
        { server.url("/chunks"), "chunked-encoding" },
        { server.url("/noHttp"), "the server at 127.0.0.1 did not answer in HTTP" },
        { server.url("/toNoHttp"), "the server at 127.0.0.1 did not answer in HTTP" },
        { server.url("/noVersion"), "the server at 127.0.0.1 did not answer in HTTP" },
        { server.url("/headersCut"), "broke off before the page began" },
        { server.url("/secondHeadersCut"), "broke off before the page began" },
        { "https" + plain.url("/page").substr(4), "no encrypted connection" },
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

TEST_F(FetchTest, aServerThatNeverStallsIsGivenUpAfterAWhile)
{
    server.answer("/drip", "HTTP/1.1 200 OK\r\n\r\nx", Ending::Drip);
    options.stallTimeout = std::chrono::hours(1);
    options.timeout = std::chrono::seconds(1);
    const std::string what = failure(server.url("/drip"));
    EXPECT_NE(what.find("not complete after 1 seconds"), std::string::npos) << what;
}

TEST_F(FetchTest, publicServersCannotRedirectToThisMachine)
{
    // Here 127.0.0.1 counts as public, and 127.0.0.2 as this machine.
    options.isOwn = [](const std::string& address) { return address == "127.0.0.2"; };
    WebServer own(WebServer::Scheme::Http, INADDR_LOOPBACK + 1);
    plain.page("/page", "public");
    own.page("/page", "own");
    plain.answer("/inwards", redirection(own.url("/page", "127.0.0.2")));
    own.answer("/outwards", redirection(plain.url("/page")));
    own.answer("/aside", redirection("/page"));
    own.answer("/outAndIn", redirection(plain.url("/inwards")));

    EXPECT_EQ(fetch(own.url("/aside", "127.0.0.2"), options), "own");
    EXPECT_EQ(fetch(own.url("/outwards", "127.0.0.2"), options), "public");
    const std::size_t asked = own.requests().size();
    EXPECT_NE(failure(plain.url("/inwards")).find("an address of this computer"), std::string::npos);
    EXPECT_EQ(own.requests().size(), asked);
    EXPECT_NE(
        failure(own.url("/outAndIn", "127.0.0.2")).find("an address of this computer"), std::string::npos);
    EXPECT_EQ(own.requests().size(), asked + 1) << "not over the connection that stands either";
}

TEST(OwnAddressTest, addresses)
{
    for (const char* own : { "127.0.0.1", "127.9.8.7", "0.0.0.0", "169.254.169.254", "::1", "::", "fe80::1",
             "::ffff:127.0.0.1", "::ffff:169.254.0.1" })
        EXPECT_TRUE(isOwnAddress(own)) << own;
    for (const char* other :
        { "192.0.2.1", "126.255.255.255", "2001:db8::1", "::ffff:192.0.2.1", "", "localhost" })
        EXPECT_FALSE(isOwnAddress(other)) << other;
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

TEST_F(FetchTest, longBodiesOfUnknownLengthAreComplete)
{
    // More than one part of the buffer holds.
    std::string body;
    while (body.size() < 150'000'000)
        body += std::to_string(body.size()) + '\n';
    server.answer("/long", "HTTP/1.0 200 OK\r\n\r\n" + body);
    options.largestBody = body.size();
    for (auto* patience : { &options.timeout, &options.connectTimeout })
        *patience = std::chrono::hours(1); // a busy machine takes its time
    options.stallTimeout = std::chrono::hours(1);
    EXPECT_TRUE(fetch(server.url("/long"), options) == body);
}

} // namespace quilvane
