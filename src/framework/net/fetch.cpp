// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/fetch.h"

#include "framework/exceptions.h"
#include "framework/net/BodyBuffer.h"
#include "framework/net/internal/CurlLibrary.h"
#include "text/charset.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <new>
#include <system_error>

namespace quilvane {

namespace {

constexpr long pieceSize = 256L * 1024; // bytes; libcurl's own of 16 KiB makes large pages slow

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

/// One request. Nothing may be thrown through libcurl: what a callback throws ends the transfer and comes out
/// of run().
class Transfer {
public:
    Transfer(std::string_view url, const FetchOptions& options, const std::stop_token& stop)
        : m_address(url)
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

    FetchedPage run()
    {
        // libcurl would read it up to there.
        if (m_address.find('\0') != std::string::npos)
            fail(CURLE_URL_MALFORMAT);
        const CURLcode result = perform();
        if (m_thrown)
            std::rethrow_exception(m_thrown);
        if (result != CURLE_OK)
            fail(result);
        return { m_body.take(), text(CURLINFO_EFFECTIVE_URL), charsetNamedIn(text(CURLINFO_CONTENT_TYPE)) };
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
        set(CURLOPT_URL, m_address.c_str());
        set(CURLOPT_DEFAULT_PROTOCOL, "https");
        set(CURLOPT_PROTOCOLS_STR, "http,https");
        set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
        set(CURLOPT_FOLLOWLOCATION, 1L);
        set(CURLOPT_MAXREDIRS, static_cast<long>(m_options.mostRedirects));
        set(CURLOPT_COOKIEFILE, ""); // no file, but cookies live as long as the redirects: some sites insist
        set(CURLOPT_USERAGENT, "Quilvane"); // some refuse a request that does not say whose it is
        set(CURLOPT_ACCEPT_ENCODING, ""); // all that libcurl can unpack
        if (!m_options.authoritiesFile.empty())
            set(CURLOPT_CAINFO, m_options.authoritiesFile.c_str());

        set(CURLOPT_CONNECTTIMEOUT_MS, m_options.connectTimeout.count());
        set(CURLOPT_LOW_SPEED_LIMIT, 1L);
        set(CURLOPT_LOW_SPEED_TIME, m_options.stallTimeout.count());
        set(CURLOPT_TIMEOUT_MS, m_options.timeout.count());
        set(CURLOPT_NOSIGNAL, 1L); // signals belong to the process, and this may be any thread of it
        set(CURLOPT_QUICK_EXIT, 1L); // a search for a host that is no longer wanted is not waited for

        // Known from the header it is refused at once; else, and unpacked, receive() counts.
        set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(m_options.largestBody));
        set(CURLOPT_BUFFERSIZE, pieceSize);
        set(CURLOPT_WRITEDATA, this);
        set(CURLOPT_WRITEFUNCTION, &Transfer::receive);
        if (m_options.progress) {
            set(CURLOPT_XFERINFODATA, this);
            set(CURLOPT_XFERINFOFUNCTION, &Transfer::report);
            set(CURLOPT_NOPROGRESS, 0L);
        }
    }

    CURLcode perform()
    {
        constexpr int longestWait = 1000; // ms; libcurl knows itself when it must look at its clocks
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
                throw std::bad_alloc(); // nothing else can happen to a handle that is used rightly
        }
        int left = 0;
        return m_curl.multiInfoRead(m_multi.get(), &left)->data.result;
    }

    static std::size_t receive(const char* bytes, std::size_t, std::size_t count, void* transfer)
    {
        Transfer& self = *static_cast<Transfer*>(transfer);
        if (self.m_body.size() + count > self.m_options.largestBody)
            return 0;
        try {
            if (self.m_body.size() == 0)
                self.m_body.expect(self.announcedSize());
            self.m_body.append({ bytes, count });
        } catch (...) {
            self.m_thrown = std::current_exception();
            return 0;
        }
        return count;
    }

    /// In bytes as they are sent, so less than the body's if they are packed; 0 if the server does not say.
    std::uint64_t announcedSize() const
    {
        curl_off_t size = 0;
        m_curl.easyGetinfo(m_easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
        return static_cast<std::uint64_t>(std::max<curl_off_t>(size, 0));
    }

    static int report(void* transfer, curl_off_t total, curl_off_t received, curl_off_t, curl_off_t)
    {
        Transfer& self = *static_cast<Transfer*>(transfer);
        const int percent = total > 0 ? static_cast<int>(100 * std::min(received, total) / total) : 0;
        if (percent != self.m_percent)
            self.m_options.progress(percent);
        self.m_percent = percent;
        return 0;
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
        switch (result) {
        case CURLE_URL_MALFORMAT:
            return "it is no valid web address";
        case CURLE_UNSUPPORTED_PROTOCOL:
            return "only http and https addresses can be loaded";
        case CURLE_COULDNT_RESOLVE_HOST:
            return "there is no such host, or the network is down";
        case CURLE_COULDNT_RESOLVE_PROXY:
            return "the proxy that is set for this system could not be found";
        case CURLE_COULDNT_CONNECT:
            return "no connection to the server could be made" + systemReason();
        case CURLE_PEER_FAILED_VERIFICATION:
            return "the server's certificate is not to be trusted" + detail();
        case CURLE_OPERATION_TIMEDOUT:
            return m_body.size() == 0 ? "time-out: the server did not answer in time"
                                      : "time-out: the server stopped sending";
        case CURLE_TOO_MANY_REDIRECTS:
            return "it leads on from page to page without an end";
        case CURLE_PARTIAL_FILE:
        case CURLE_GOT_NOTHING:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
            return "the connection broke off";
        case CURLE_BAD_CONTENT_ENCODING:
            return "its compressed content is damaged";
        case CURLE_FILESIZE_EXCEEDED:
        case CURLE_WRITE_ERROR: // receive() took no more
            return "it is larger than " + lengthInWords(m_options.largestBody);
        case CURLE_ABORTED_BY_CALLBACK:
            return "it is no longer wanted";
        default:
            return m_curl.easyStrerror(result) + detail();
        }
    }

    std::string systemReason() const
    {
        long errorNumber = 0;
        m_curl.easyGetinfo(m_easy.get(), CURLINFO_OS_ERRNO, &errorNumber);
        if (errorNumber == 0)
            return {};
        return " (" + std::generic_category().message(static_cast<int>(errorNumber)) + ')';
    }

    /// libcurl's own words, in parentheses.
    std::string detail() const
    {
        return m_detail[0] == '\0' ? "" : " (" + std::string(m_detail.data()) + ')';
    }

    const CurlLibrary& m_curl = CurlLibrary::instance();
    std::string m_address;
    const FetchOptions& m_options;
    const std::stop_token& m_stop;
    std::array<char, CURL_ERROR_SIZE> m_detail{};
    BodyBuffer m_body;
    int m_percent = 0;
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

FetchedPage fetch(std::string_view url, const FetchOptions& options, const std::stop_token& stop)
{
    return Transfer(url, options, stop).run();
}

} // namespace quilvane
