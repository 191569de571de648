// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/fetch.h"

#include "framework/exceptions.h"
#include "support/Scoped.h"
#include "support/WebServer.h"
#include "support/messageOf.h"

#include <gtest/gtest.h>

namespace quilvane {

namespace {

using namespace std::string_literals;
using Ending = WebServer::Ending;

const std::string ok = "HTTP/1.1 200 OK\r\n";
const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
const std::string gzipped = ok + "Content-Encoding: gzip\r\n\r\n";
const std::string ofTenBytes = ok + "Content-Length: 10\r\n\r\n";

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

    /// The message must tell the reason and name the address.
    void expectFailure(const std::string& url, const std::string& reason) const
    {
        const std::string message = messageOf<ConnectionException>([&] { fetch(url, options); });
        EXPECT_NE(message.find(reason), std::string::npos) << url << ": " << message;
        EXPECT_NE(message.find(std::string(url.c_str()).substr(0, 60)), std::string::npos) << message;
    }

    WebServer server;
    WebServer plain{ WebServer::Scheme::Http };
    FetchOptions options;

private:
    Scoped m_noProxy = environmentVariable("no_proxy", "*");
};

struct Answer {
    const char* path;
    std::string bytes;
    std::string expected; // the body, or a part of the reason why there is none
    Ending ending = Ending::Close;
};

} // namespace

TEST_F(FetchTest, bodies)
{
    const std::string page = "<p>x@y.org\r\n\0\xFF"s;
    const std::string full(100'000, 'x');
    const Answer answers[] = {
        { "/page", ok + "Content-Length: 14\r\n\r\n" + page, page },
        { "/gzip",
            gzipped
                + "\x1f\x8b\x08\0\0\0\0\0\x02\x03\xab\x70\xa8\xd4\xcb\x2f\x4a\x07\0\x7f\x72\xc8\x74\x07\0\0\0"s,
            "x@y.org" },
        { "/chunked", chunked + "3\r\nx@y\r\n4;x=y\r\n.org\r\n0\r\n\r\n", "x@y.org" },
        { "/old", "HTTP/1.0 200 OK\r\n\r\nx@y.org", "x@y.org" },
        { "/cut", ok + "\r\nx@y.org", "x@y.org", Ending::CutOff }, // many servers end like that
        { "/missing", "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\ngone", "gone" },
        { "/empty", ok + "Content-Length: 0\r\n\r\n", "" },
        { "/full", ok + "\r\n" + full, full },
        { "/redirect", redirection("/page"), page },
    };
    for (const auto& [path, answer, body, ending] : answers) {
        server.answer(path, answer, ending);
        EXPECT_EQ(fetch(server.url(path), options), body) << path;
    }
    plain.answer("/insecure", redirection(server.url("/redirect")));
    const std::string withoutScheme = server.url("/page").substr(8);
    for (const std::string& url : { withoutScheme, " \t\xC2\xA0https://" + withoutScheme + "\n ",
             "HTTPS://" + withoutScheme + "#part", plain.url("/insecure") })
        EXPECT_EQ(fetch(url, options), page) << url;
}

TEST_F(FetchTest, failuresNameTheAddressAndTheReason)
{
    std::string lines;
    while (lines.size() < 300'000)
        lines += "X-Line: " + std::string(1000, 'x') + "\r\n";
    const Answer answers[] = {
        { "/short", ofTenBytes + "x@y.org", "broke off" },
        { "/nothing", "", "broke off" },
        { "/headersCut", ok + "Content-Type: text/html\r\n", "broke off before the page began" },
        { "/secondHeadersCut", "HTTP/1.1 103 Early Hints\r\n\r\n" + ok, "broke off before the page began" },
        { "/silent", ok, "did not answer in time", Ending::Stall },
        { "/stalled", ofTenBytes + "x", "stopped sending", Ending::Stall },
        { "/endless", ok + "\r\nx", "larger than 100000 bytes", Ending::Endless },
        { "/large", ok + "Content-Length: 100001\r\n\r\n", "larger than 100000 bytes", Ending::Stall },
        { "/headers", ok + lines + "\r\nx", "headers are too long" },
        { "/header", ok + "X-Line: " + std::string(200'000, 'x') + "\r\n\r\nx", "headers are too long" },
        { "/trailers", chunked + "1\r\nx\r\n0\r\n" + lines + "\r\n", "headers are too long" },
        { "/chunks", chunked + "no number\r\n", "chunked-encoding" },
        { "/damaged", gzipped + "no archive", "compressed content" },
        { "/noHttp", "220 mail.example.org ready\r\n", "the server at 127.0.0.1 did not answer in HTTP" },
        { "/toNoHttp", redirection("/noHttp"), "the server at 127.0.0.1 did not answer in HTTP" },
        { "/noVersion", "HTTP/9.9 200 OK\r\n\r\nx", "the server at 127.0.0.1 did not answer in HTTP" },
        { "/loop", redirection("/loop"), "without an end" },
        { "/ftp", redirection("ftp://127.0.0.1/"), "only http and https" },
        { "/insecure", redirection(plain.url("/page")), "one that is not" },
    };
    plain.page("/page", "x@y.org");
    for (const auto& [path, answer, reason, ending] : answers) {
        server.answer(path, answer, ending);
        expectFailure(server.url(path), reason);
    }
    plain.answer("/toAndFro", redirection(server.url("/insecure")));
    const std::pair<std::string, std::string> addresses[] = {
        { "   ", "no valid web address" },
        { "https://", "no valid web address" },
        { "https://a b/", "no valid web address" },
        { "127.0.0.1\0.org"s, "no valid web address" },
        { "ftp://127.0.0.1/", "only http and https" },
        { "file:///etc/passwd", "only http and https" },
        { "https://" + std::string(64, 'a') + ".invalid/", "no such host" }, // no name server is asked for it
        { "https://127.0.0.1:1/", "Connection refused" },
        { "https" + plain.url("/page").substr(4), "no encrypted connection" },
        { plain.url("/toAndFro"), "one that is not" },
        { server.url("/page", "localhost"), "certificate" },
    };
    for (const auto& [url, reason] : addresses)
        expectFailure(url, reason);
    options.authoritiesFile.clear(); // then its certificate is signed by nobody known
    expectFailure(server.url("/page"), "certificate");
}

TEST_F(FetchTest, aServerThatNeverStallsIsGivenUpAfterAWhile)
{
    server.answer("/drip", ok + "\r\nx", Ending::Drip);
    options.stallTimeout = std::chrono::hours(1);
    options.timeout = std::chrono::seconds(1);
    expectFailure(server.url("/drip"), "not complete after 1 seconds");
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
    expectFailure(plain.url("/inwards"), "to this computer");
    EXPECT_EQ(own.requests().size(), asked);
    expectFailure(own.url("/outAndIn", "127.0.0.2"), "to this computer");
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
    server.answer("/stalled", ok + "\r\nx", Ending::Stall);
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
    // A busy machine takes its time.
    options.timeout = options.connectTimeout = std::chrono::hours(1);
    options.stallTimeout = std::chrono::hours(1);
    EXPECT_TRUE(fetch(server.url("/long"), options) == body);
}

} // namespace quilvane
