// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/fetch.h"

#include "framework/exceptions.h"
#include "framework/internal/qtText.h"
#include "framework/net/BodyBuffer.h"
#include "framework/net/internal/CurlLibrary.h"

#include <QUrl>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <new>
#include <system_error>

namespace quilvane {

namespace {

constexpr long pieceSize = 256L * 1024; // bytes; with libcurl's default of 16 KiB large pages are slow
/// In bytes of one answer, trailers included. Debian's libcurl stops at 300 KiB, but does not report it.
constexpr std::uint64_t largestHeaders = std::uint64_t(256) * 1024;

struct FreeEasy {
    void operator()(CURL* easy) const { CurlLibrary::instance().easyCleanup(easy); }
};
struct FreeMulti {
    void operator()(CURLM* multi) const { CurlLibrary::instance().multiCleanup(multi); }
};

std::string lengthInWords(std::uint64_t bytes)
{
    const char* const units[] = { " bytes", " KiB", " MiB", " GiB" };
    std::size_t unit = 0;
    for (; unit + 1 < std::size(units) && bytes % 1024 == 0 && bytes > 0; ++unit)
        bytes /= 1024;
    return std::to_string(bytes) + units[unit];
}

std::string withoutBlanksAround(std::string_view text)
{
    return fromQt(toQt(text).trimmed());
}

/// The address as numbers; empty if it is no internet address.
std::string textOf(const sockaddr& address)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (address.sa_family == AF_INET)
        ::inet_ntop(
            AF_INET, &reinterpret_cast<const sockaddr_in&>(address).sin_addr, text.data(), text.size());
    else if (address.sa_family == AF_INET6)
        ::inet_ntop(
            AF_INET6, &reinterpret_cast<const sockaddr_in6&>(address).sin6_addr, text.data(), text.size());
    return text.data();
}

/// One request. No exception may pass through libcurl: one in a callback ends the transfer and is thrown
/// again by run().
class Transfer {
public:
    Transfer(std::string_view url, const FetchOptions& options, const std::stop_token& stop)
        : m_address(url)
        , m_request(withoutBlanksAround(url))
        , m_options(options)
        , m_stop(stop)
    {
        m_easy.reset(m_curl.easyInit());
        m_multi.reset(m_curl.multiInit());
        if (!m_easy || !m_multi)
            throw std::bad_alloc();
        setUp();
    }

    ~Transfer() { m_curl.multiRemoveHandle(m_multi.get(), m_easy.get()); }

    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    std::string run()
    {
        // libcurl would use only the part before it.
        if (m_request.find('\0') != std::string::npos)
            fail(CURLE_URL_MALFORMAT);
        const CURLcode result = perform();
        if (m_thrown)
            std::rethrow_exception(m_thrown);
        if (result != CURLE_OK)
            fail(result);
        if (m_inHeaders) // libcurl takes that for an empty page
            fail(CURLE_PARTIAL_FILE);
        return m_body.take();
    }

private:
    template <typename Value>
    void set(CURLoption option, Value value)
    {
        const CURLcode status = m_curl.easySetopt(m_easy.get(), option, value);
        if (status == CURLE_OUT_OF_MEMORY)
            throw std::bad_alloc();
        if (status != CURLE_OK)
            fail(status);
    }

    void setUp()
    {
        set(CURLOPT_ERRORBUFFER, m_detail.data());
        set(CURLOPT_URL, m_request.c_str());
        set(CURLOPT_DEFAULT_PROTOCOL, "https");
        set(CURLOPT_PROTOCOLS_STR, "http,https"); // of redirects as well
        set(CURLOPT_FOLLOWLOCATION, 1L);
        set(CURLOPT_MAXREDIRS, static_cast<long>(m_options.mostRedirects));
        set(CURLOPT_COOKIEFILE, ""); // no file: cookies during the redirects only, which some sites need
        set(CURLOPT_USERAGENT, "Quilvane"); // some servers refuse a request without it
        set(CURLOPT_ACCEPT_ENCODING, ""); // all that libcurl can unpack
        if (!m_options.authoritiesFile.empty())
            set(CURLOPT_CAINFO, m_options.authoritiesFile.c_str());

        set(CURLOPT_CONNECTTIMEOUT_MS, m_options.connectTimeout.count());
        set(CURLOPT_LOW_SPEED_LIMIT, 1L);
        set(CURLOPT_LOW_SPEED_TIME, m_options.stallTimeout.count());
        set(CURLOPT_TIMEOUT_MS, m_options.timeout.count());
        set(CURLOPT_NOSIGNAL, 1L); // this may not be the main thread
        set(CURLOPT_QUICK_EXIT, 1L); // don't wait for a host name look-up that was cancelled

        set(CURLOPT_OPENSOCKETDATA, this);
        set(CURLOPT_OPENSOCKETFUNCTION, &Transfer::openSocket);
        set(CURLOPT_PREREQDATA, this);
        set(CURLOPT_PREREQFUNCTION, &Transfer::beginRequest);
        set(CURLOPT_HEADERDATA, this);
        set(CURLOPT_HEADERFUNCTION, &Transfer::receiveHeader);

        // A too large size in the header is refused at once; otherwise receive() counts the unpacked bytes.
        set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(m_options.largestBody));
        set(CURLOPT_BUFFERSIZE, pieceSize);
        set(CURLOPT_WRITEDATA, this);
        set(CURLOPT_WRITEFUNCTION, &Transfer::receive);
    }

    CURLcode perform()
    {
        constexpr int longestWait = 1000; // ms; libcurl wakes up earlier for its own timers
        const std::stop_callback wake(m_stop, [this] { m_curl.multiWakeup(m_multi.get()); });
        m_curl.multiAddHandle(m_multi.get(), m_easy.get());
        int running = 1;
        while (running > 0) {
            if (m_stop.stop_requested())
                return CURLE_ABORTED_BY_CALLBACK;
            CURLMcode status = m_curl.multiPerform(m_multi.get(), &running);
            if (status == CURLM_OK && running > 0)
                status = m_curl.multiPoll(m_multi.get(), nullptr, 0, longestWait, nullptr);
            if (status != CURLM_OK)
                throw ConnectionException(m_address, m_curl.multiStrerror(status));
        }
        int left = 0;
        return m_curl.multiInfoRead(m_multi.get(), &left)->data.result;
    }

    /// Refuses the address before anything is sent there.
    static curl_socket_t openSocket(void* transfer, curlsocktype, curl_sockaddr* address)
    {
        Transfer& self = *static_cast<Transfer*>(transfer);
        if (!self.mayLeadTo(textOf(address->addr)))
            return CURL_SOCKET_BAD;
        return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    }

    /// Called when there is a connection, a new one or that of the previous page. With a proxy the address is
    /// the proxy's.
    // NOLINTNEXTLINE(readability-non-const-parameter): the type is libcurl's
    static int beginRequest(void* transfer, char* address, char*, int, int)
    {
        Transfer& self = *static_cast<Transfer*>(transfer);
        self.m_refusal.clear();
        const bool secure = self.text(CURLINFO_SCHEME) == "HTTPS";
        if (self.m_wasSecure && !secure)
            self.m_refusal = "it leads from an encrypted page to one that is not";
        if (!self.m_refusal.empty() || !self.mayLeadTo(address))
            return CURL_PREREQFUNC_ABORT;
        self.m_wasSecure = secure;
        self.m_wasPublic = self.m_wasPublic || !self.m_options.isOwn(address);
        self.m_headerSize = 0;
        self.m_inHeaders = true;
        return CURL_PREREQFUNC_OK;
    }

    bool mayLeadTo(const std::string& address)
    {
        if (!m_wasPublic || !m_options.isOwn(address))
            return true;
        m_refusal = "it leads from a public server to this computer or to a device on the same network link";
        return false;
    }

    /// Also called for trailers.
    static std::size_t receiveHeader(const char* line, std::size_t, std::size_t length, void* transfer)
    {
        Transfer& self = *static_cast<Transfer*>(transfer);
        self.m_headerSize += length;
        if (self.m_headerSize > largestHeaders) {
            self.m_refusal = tooLongHeaders;
            return 0;
        }
        const std::string_view text(line, length);
        if (text.starts_with("HTTP/"))
            self.m_inHeaders = true; // also the header of an interim answer
        else if (text == "\r\n" || text == "\n")
            self.m_inHeaders = false;
        return length;
    }

    static std::size_t receive(const char* bytes, std::size_t, std::size_t count, void* transfer)
    {
        Transfer& self = *static_cast<Transfer*>(transfer);
        if (self.m_body.size() + count > self.m_options.largestBody) {
            self.m_refusal = self.tooLargeBody();
            return 0;
        }
        try {
            if (self.m_body.size() == 0)
                self.m_body.expect(self.announcedSize());
            self.m_body.append({ bytes, count });
        } catch (...) {
            self.m_thrown = std::current_exception();
            return 0;
        }
        if (self.m_options.progress)
            self.m_options.progress(self.m_body.size());
        return count;
    }

    /// The size in bytes as sent, which is less than the body's if that is packed; 0 if the server does not
    /// tell it.
    std::uint64_t announcedSize() const
    {
        curl_off_t size = 0;
        m_curl.easyGetinfo(m_easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
        return static_cast<std::uint64_t>(std::max<curl_off_t>(size, 0));
    }

    std::string text(CURLINFO info) const
    {
        const char* value = nullptr;
        m_curl.easyGetinfo(m_easy.get(), info, &value);
        return value ? value : "";
    }

    [[noreturn]] void fail(CURLcode result) const { throw ConnectionException(m_address, reasonFor(result)); }

    std::string reasonFor(CURLcode result) const
    {
        if (!m_refusal.empty())
            return m_refusal;
        switch (result) {
        case CURLE_URL_MALFORMAT:
            return "it is no valid web address";
        case CURLE_UNSUPPORTED_PROTOCOL:
            // While an answer is read the error is about the answer, else about an address.
            return m_inHeaders ? noHttp() : "only http and https addresses can be loaded";
        case CURLE_WEIRD_SERVER_REPLY:
            return noHttp();
        case CURLE_COULDNT_RESOLVE_HOST:
            return "there is no such host, or the network is down";
        case CURLE_COULDNT_RESOLVE_PROXY:
            return "the proxy that is set for this system could not be found";
        case CURLE_COULDNT_CONNECT:
            return "no connection to the server could be made" + systemReason();
        case CURLE_SSL_CONNECT_ERROR:
            return "no encrypted connection to the server could be made" + detail();
        case CURLE_PEER_FAILED_VERIFICATION:
            return "the server's certificate is not to be trusted" + detail();
        case CURLE_OPERATION_TIMEDOUT:
            return "time-out: " + timeOut();
        case CURLE_TOO_MANY_REDIRECTS:
            return "it leads on from page to page without an end";
        case CURLE_PARTIAL_FILE:
        case CURLE_GOT_NOTHING:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
            return "the connection broke off" + std::string(m_inHeaders ? " before the page began" : "")
                + detail();
        case CURLE_OUT_OF_MEMORY: // also for a header line that is too long
            return m_inHeaders ? tooLongHeaders : m_curl.easyStrerror(result);
        case CURLE_BAD_CONTENT_ENCODING:
            return "its compressed content is damaged";
        case CURLE_FILESIZE_EXCEEDED:
            return tooLargeBody();
        case CURLE_ABORTED_BY_CALLBACK:
            return "it is no longer wanted";
        default:
            return m_curl.easyStrerror(result) + detail();
        }
    }

    std::string noHttp() const
    {
        return "the server at " + hostOf(text(CURLINFO_EFFECTIVE_URL)) + " did not answer in HTTP";
    }

    std::string timeOut() const
    {
        constexpr std::chrono::milliseconds mostEarly(10); // libcurl's timers are less exact
        const auto spent = std::chrono::steady_clock::now() - m_start;
        if (spent + mostEarly >= m_options.timeout)
            return "it was not complete after "
                + std::to_string(std::chrono::ceil<std::chrono::seconds>(m_options.timeout).count())
                + " seconds";
        return m_body.size() == 0 ? "the server did not answer in time" : "the server stopped sending";
    }

    std::string tooLargeBody() const { return "it is larger than " + lengthInWords(m_options.largestBody); }

    std::string systemReason() const
    {
        long errorNumber = 0;
        m_curl.easyGetinfo(m_easy.get(), CURLINFO_OS_ERRNO, &errorNumber);
        if (errorNumber == 0)
            return {};
        return " (" + std::generic_category().message(static_cast<int>(errorNumber)) + ')';
    }

    /// libcurl's own message, in parentheses.
    std::string detail() const
    {
        return m_detail[0] == '\0' ? "" : " (" + std::string(m_detail.data()) + ')';
    }

    static constexpr const char* tooLongHeaders = "its headers are too long";

    const CurlLibrary& m_curl = CurlLibrary::instance();
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    std::string m_address; // as the caller gave it
    std::string m_request;
    const FetchOptions& m_options;
    const std::stop_token& m_stop;
    std::array<char, CURL_ERROR_SIZE> m_detail{};
    BodyBuffer m_body;
    std::string m_refusal; // why a callback has ended the transfer
    bool m_wasSecure = false; // the previous page was encrypted
    bool m_wasPublic = false; // a page of this chain of redirects was public
    bool m_inHeaders = false; // the headers are being received
    std::uint64_t m_headerSize = 0;
    std::exception_ptr m_thrown;
    std::unique_ptr<CURLM, FreeMulti> m_multi;
    std::unique_ptr<CURL, FreeEasy> m_easy;
};

} // namespace

FetchOptions& FetchOptions::standard()
{
    static FetchOptions options;
    return options;
}

std::string fetch(std::string_view url, const FetchOptions& options, const std::stop_token& stop)
{
    return Transfer(url, options, stop).run();
}

std::string hostOf(std::string_view url)
{
    return fromQt(QUrl::fromUserInput(toQt(url).trimmed()).host());
}

} // namespace quilvane
