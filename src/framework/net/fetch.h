// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/net/ownAddress.h"

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
    /// For all of it: a server that sends a byte now and then never stalls.
    std::chrono::milliseconds timeout = std::chrono::minutes(10);
    /// In bytes, unpacked.
    std::uint64_t largestBody = std::uint64_t(1) << 30;
    int mostRedirects = 20;
    /// A PEM file of the certificate authorities to trust; empty for the system's.
    std::string authoritiesFile = {};
    /// Called with the bytes of the body that are here, unpacked, whenever there are more. On the thread that
    /// fetches; must not throw.
    std::function<void(std::uint64_t received)> progress = {};
    /// Which numeric addresses no public server may lead to. On the thread that fetches; must not throw.
    std::function<bool(const std::string& address)> isOwn = isOwnAddress;

    /// What is taken where nothing else is said. Main thread only; tests set it.
    static FetchOptions& standard();
};

/// The body of one page over http or https, unpacked, otherwise as it came; waits for it. Certificates are
/// checked. Redirects are followed, but not from https to http, and not from a public server to an address of
/// this machine: whoever writes a page is not to choose what is asked for inside of the user's own network.
/// Blanks around the address do not count, and without a scheme it is tried over https. The status is not
/// looked at: the body of an error page is one, too. The system's variables for proxies hold. On any thread;
/// nothing of the network library is set up before the first call.
///
/// Throws ConnectionException, which names the address and the reason, for everything that keeps the body
/// from coming whole, a request to `stop` included, which ends the transfer at once. Memory that is not there
/// is an OutOfMemoryException, a system without libcurl a RuntimeException.
std::string fetch(std::string_view url, const FetchOptions& options = FetchOptions::standard(),
    const std::stop_token& stop = {});

/// The host that an address names, with or without a scheme; empty if it names none.
std::string hostOf(std::string_view url);

} // namespace quilvane
