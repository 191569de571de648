// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>

namespace quilvane {

struct FetchOptions {
    /// For finding the host, connecting and agreeing on encryption; each redirect to another host counts
    /// anew.
    std::chrono::milliseconds connectTimeout = std::chrono::seconds(30);
    /// How long the server may send nothing before the transfer is given up.
    std::chrono::seconds stallTimeout = std::chrono::seconds(60);
    /// For all of it; 0 sets no limit.
    std::chrono::milliseconds timeout = std::chrono::milliseconds(0);
    /// In bytes, unpacked.
    std::uint64_t largestBody = std::uint64_t(1) << 30;
    int mostRedirects = 20;
    /// A PEM file of the certificate authorities to trust; empty for the system's.
    std::string authoritiesFile = {};
    /// Called now and then while the body comes, with the share that is here, 0 to 100; not at all if the
    /// server does not say how long it is. On the thread that fetches; must not throw.
    std::function<void(int percent)> progress = {};

    /// What is taken where nothing else is said. Main thread only; tests set it.
    static FetchOptions& standard();
};

struct FetchedPage {
    std::string body; // unpacked, otherwise as it came
    std::string url; // behind all redirects
    std::string charset; // as the server names it; empty if it does not
};

/// Gets one page over http or https, and waits for it. Redirects are followed, certificates checked. An
/// address without a scheme is tried over https. The status is not looked at: the body of an error page is
/// one, too. The system's variables for proxies hold. On any thread; nothing of the network library is set up
/// before the first call.
///
/// Throws ConnectionException, which names the address and the reason, for everything that keeps the body
/// from coming whole, a request to `stop` included, which ends the transfer at once. Memory that is not there
/// is an OutOfMemoryException, a system without libcurl a RuntimeException.
FetchedPage fetch(std::string_view url, const FetchOptions& options = FetchOptions::standard(),
    const std::stop_token& stop = {});

} // namespace quilvane
