// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/WebServer.h"

#include <netinet/in.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <stdexcept>

namespace quilvane {

namespace {

void require(bool succeeded, const char* what)
{
    if (!succeeded)
        throw std::runtime_error(std::string("the test's web server failed: ") + what);
}

/// Waits for something to read; false when the server is to end first.
bool waitFor(int socket, const std::stop_token& stop)
{
    pollfd waiting{ socket, POLLIN, 0 };
    while (!stop.stop_requested())
        if (::poll(&waiting, 1, 20) > 0)
            return true;
    return false;
}

} // namespace

void WebServer::FreeContext::operator()(ssl_ctx_st* context) const
{
    SSL_CTX_free(context);
}

WebServer::WebServer(Scheme scheme)
{
    if (scheme == Scheme::Https)
        makeCertificate();
    listen();
    m_acceptor = std::jthread([this](const std::stop_token& stop) { acceptAll(stop); });
}

WebServer::~WebServer()
{
    m_acceptor = {};
    ::close(m_listener);
}

void WebServer::answer(const std::string& path, std::string bytes, Ending ending)
{
    m_answers[path] = { std::move(bytes), ending };
}

void WebServer::page(const std::string& path, const std::string& body, const std::string& moreHeaders)
{
    answer(path,
        "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + moreHeaders + "\r\n"
            + body);
}

std::string WebServer::url(std::string_view path, std::string_view host) const
{
    return (m_context ? "https://" : "http://") + std::string(host) + ':' + std::to_string(m_port)
        + std::string(path);
}

std::vector<std::string> WebServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

void WebServer::makeCertificate()
{
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
    X509* const x509 = certificate.get();
    X509_set_version(x509, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(x509), 1);
    X509_gmtime_adj(X509_getm_notBefore(x509), -3600);
    X509_gmtime_adj(X509_getm_notAfter(x509), 3600);
    X509_set_pubkey(x509, key.get());
    const unsigned char name[] = "Test server";
    X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_ASC, name, -1, -1, 0);
    X509_set_issuer_name(x509, X509_get_subject_name(x509));
    X509_EXTENSION* const host = X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "IP:127.0.0.1");
    X509_add_ext(x509, host, -1);
    X509_EXTENSION_free(host);
    require(X509_sign(x509, key.get(), EVP_sha256()) > 0, "signing");

    std::FILE* const file = std::fopen(authoritiesFile().c_str(), "w");
    require(file && PEM_write_X509(file, x509) == 1 && std::fclose(file) == 0, "writing the certificate");

    m_context.reset(SSL_CTX_new(TLS_server_method()));
    require(SSL_CTX_use_certificate(m_context.get(), x509) == 1
            && SSL_CTX_use_PrivateKey(m_context.get(), key.get()) == 1,
        "using the certificate");
}

void WebServer::listen()
{
    m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    require(::bind(m_listener, any, size) == 0 && ::listen(m_listener, 16) == 0
            && ::getsockname(m_listener, any, &size) == 0,
        "listening");
    m_port = ntohs(address.sin_port);
}

void WebServer::acceptAll(const std::stop_token& stop)
{
    std::vector<std::jthread> connections;
    while (waitFor(m_listener, stop)) {
        const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket >= 0)
            connections.emplace_back([this, socket, stop] { serve(socket, stop); });
    }
}

void WebServer::serve(int socket, const std::stop_token& stop)
{
    const std::unique_ptr<SSL, decltype(&SSL_free)> encryption(
        m_context ? SSL_new(m_context.get()) : nullptr, SSL_free);
    SSL* const ssl = encryption.get();
    std::string request;
    const bool ready
        = waitFor(socket, stop) && (!ssl || (SSL_set_fd(ssl, socket) == 1 && SSL_accept(ssl) == 1));
    while (ready && !request.ends_with("\r\n\r\n")) {
        char byte = 0;
        if ((ssl ? SSL_read(ssl, &byte, 1) : static_cast<int>(::recv(socket, &byte, 1, 0))) != 1)
            break;
        request += byte;
    }
    if (request.starts_with("GET ")) {
        const std::string path = request.substr(4, request.find(' ', 4) - 4);
        {
            const std::lock_guard lock(m_mutex);
            m_requests.push_back(path);
        }
        const auto found = m_answers.find(path);
        if (found != m_answers.end())
            send(found->second, ssl, socket, stop);
    }
    ::close(socket);
}

void WebServer::send(const Answer& answer, ssl_st* encryption, int socket, const std::stop_token& stop) const
{
    const auto write = [&](std::string_view bytes) {
        if (encryption)
            return SSL_write(encryption, bytes.data(), static_cast<int>(bytes.size())) > 0;
        return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0;
    };
    write(answer.bytes);
    const std::string more(16 * 1024, answer.bytes.back());
    while (answer.ending == Ending::Endless && !stop.stop_requested() && write(more)) { }
    if (answer.ending == Ending::Stall)
        waitFor(socket, stop);
    if (answer.ending == Ending::Close && encryption)
        SSL_shutdown(encryption);
}

} // namespace quilvane
