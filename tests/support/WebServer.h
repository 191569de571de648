// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TempFolder.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

struct ssl_ctx_st;
struct ssl_st;

namespace quilvane {

/// A web server on the loopback interface, with a certificate for 127.0.0.1 that is made for the run. It
/// answers each path with the bytes that the test gives it, so that it can misbehave in any way. Ends with
/// all its connections when it goes.
class WebServer {
public:
    enum class Scheme { Http, Https };
    enum class Ending {
        Close,
        CutOff, // without the end of the encryption
        Stall, // nothing more comes, and the connection stays
        Endless, // the last of the answer's bytes comes again and again
    };

    explicit WebServer(Scheme scheme = Scheme::Https);
    ~WebServer();

    /// `bytes` are the whole answer, header lines included. Before the first request.
    void answer(const std::string& path, std::string bytes, Ending ending = Ending::Close);
    /// An answer with a header that fits.
    void page(const std::string& path, const std::string& body, const std::string& moreHeaders = {});

    std::string url(std::string_view path, std::string_view host = "127.0.0.1") const;
    /// What a client must trust.
    std::string authoritiesFile() const { return m_folder / "certificate.pem"; }
    /// The paths that were asked for, in order.
    std::vector<std::string> requests() const;

private:
    struct Answer {
        std::string bytes;
        Ending ending = Ending::Close;
    };
    struct FreeContext {
        void operator()(ssl_ctx_st* context) const;
    };

    void makeCertificate();
    void listen();
    void acceptAll(const std::stop_token& stop);
    void serve(int socket, const std::stop_token& stop);
    void send(const Answer& answer, ssl_st* encryption, int socket, const std::stop_token& stop) const;

    TempFolder m_folder;
    std::map<std::string, Answer> m_answers;
    std::unique_ptr<ssl_ctx_st, FreeContext> m_context; // null for plain http
    int m_listener = -1;
    int m_port = 0;
    mutable std::mutex m_mutex; // guards m_requests
    std::vector<std::string> m_requests;
    std::jthread m_acceptor; // first to go
};

} // namespace quilvane
