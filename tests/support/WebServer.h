// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TempFolder.h"

#include <netinet/in.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace quilvane {

/// A web server on the loopback interface, with a certificate for 127.0.0.1 that is made for the run. It
/// answers each path with the bytes that the test gives it, so that it can misbehave in any way. Its
/// destructor ends all connections.
class WebServer {
public:
    enum class Scheme { Http, Https };
    enum class Ending {
        Close,
        CutOff, // without a regular end of the encryption
        Stall, // then it sends nothing more and keeps the connection open
        Endless, // it sends the answer again and again
        Drip, // then it sends a letter now and then
    };

    explicit WebServer(Scheme scheme = Scheme::Https, in_addr_t host = INADDR_LOOPBACK)
    {
        if (scheme == Scheme::Https)
            makeCertificate();
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(host);
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        socklen_t size = sizeof address;
        require(::bind(m_listener, any, size) == 0 && ::listen(m_listener, 16) == 0
                && ::getsockname(m_listener, any, &size) == 0,
            "listening");
        m_port = ntohs(address.sin_port);
        m_acceptor = std::jthread([this](const std::stop_token& stop) { acceptAll(stop); });
    }
    ~WebServer()
    {
        m_acceptor = {};
        ::close(m_listener);
    }

    /// `bytes` are the whole answer, header lines included.
    void answer(const std::string& path, std::string bytes, Ending ending = Ending::Close)
    {
        const std::lock_guard lock(m_mutex);
        m_answers[path] = { std::move(bytes), ending };
    }
    /// An answer with a matching header.
    void page(const std::string& path, const std::string& body, const std::string& moreHeaders = {})
    {
        const std::string length = "Content-Length: " + std::to_string(body.size());
        answer(path, "HTTP/1.1 200 OK\r\n" + length + "\r\n" + moreHeaders + "\r\n" + body);
    }

    std::string url(std::string_view path, std::string_view host = "127.0.0.1") const
    {
        return (m_context ? "https://" : "http://") + std::string(host) + ':' + std::to_string(m_port)
            + std::string(path);
    }
    /// The certificate that a client must trust.
    std::string authoritiesFile() const { return m_folder / "certificate.pem"; }
    /// The paths that were asked for, in order.
    std::vector<std::string> requests() const
    {
        const std::lock_guard lock(m_mutex);
        return m_requests;
    }

private:
    struct Answer {
        std::string bytes;
        Ending ending = Ending::Close;
    };

    static void require(bool succeeded, const char* what)
    {
        if (!succeeded)
            throw std::runtime_error(std::string("the test's web server failed: ") + what);
    }

    /// Waits until there is something to read; false if the server must end first.
    static bool waitFor(int socket, const std::stop_token& stop)
    {
        pollfd waiting{ socket, POLLIN, 0 };
        while (!stop.stop_requested())
            if (::poll(&waiting, 1, 20) > 0)
                return true;
        return false;
    }

    void makeCertificate()
    {
        const std::string key = m_folder / "key.pem";
        const std::string command
            = "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=Test"
              " -addext subjectAltName=IP:127.0.0.1 -keyout "
            + key + " -out " + authoritiesFile() + " 2>/dev/null";
        require(std::system(command.c_str()) == 0, "making a certificate");
        m_context.reset(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
        require(
            SSL_CTX_use_certificate_file(m_context.get(), authoritiesFile().c_str(), SSL_FILETYPE_PEM) == 1
                && SSL_CTX_use_PrivateKey_file(m_context.get(), key.c_str(), SSL_FILETYPE_PEM) == 1,
            "using the certificate");
    }

    void acceptAll(const std::stop_token& stop)
    {
        std::vector<std::jthread> connections;
        while (waitFor(m_listener, stop)) {
            const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            connections.emplace_back([this, socket, stop] { serve(socket, stop); });
        }
    }

    void serve(int socket, const std::stop_token& stop)
    {
        const std::unique_ptr<SSL, decltype(&SSL_free)> encryption(
            m_context ? SSL_new(m_context.get()) : nullptr, SSL_free);
        SSL* const ssl = encryption.get();
        const bool ready
            = waitFor(socket, stop) && (!ssl || (SSL_set_fd(ssl, socket) == 1 && SSL_accept(ssl) == 1));
        std::string request;
        char byte = 0;
        while (ready && !request.ends_with("\r\n\r\n") && (request.empty() || request[0] == 'G')
            && (ssl ? SSL_read(ssl, &byte, 1) : ::recv(socket, &byte, 1, 0)) == 1)
            request += byte;
        if (request.starts_with("GET "))
            send(answerTo(request.substr(4, request.find(' ', 4) - 4)), ssl, socket, stop);
        ::close(socket);
    }

    /// Empty for a path that the test has not defined.
    Answer answerTo(const std::string& path)
    {
        const std::lock_guard lock(m_mutex);
        m_requests.push_back(path);
        return m_answers[path];
    }

    static void send(const Answer& answer, SSL* ssl, int socket, const std::stop_token& stop)
    {
        const auto write = [&](std::string_view bytes) {
            return (ssl ? SSL_write(ssl, bytes.data(), static_cast<int>(bytes.size()))
                        : ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL))
                > 0;
        };
        write(answer.bytes);
        while (answer.ending == Ending::Endless && !stop.stop_requested() && write(answer.bytes)) { }
        while (answer.ending == Ending::Drip && !stop.stop_requested() && write("x"))
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        if (answer.ending == Ending::Stall)
            waitFor(socket, stop);
        if (answer.ending != Ending::CutOff && ssl)
            SSL_shutdown(ssl);
    }

    TempFolder m_folder;
    std::shared_ptr<SSL_CTX> m_context; // null for plain http
    int m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int m_port = 0;
    mutable std::mutex m_mutex; // guards the two below
    std::map<std::string, Answer> m_answers;
    std::vector<std::string> m_requests;
    std::jthread m_acceptor; // destroyed first
};

} // namespace quilvane
