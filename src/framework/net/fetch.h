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
    /// For finding the host, connecting and negotiating encryption; starts again with each redirect to
    /// another host.
    std::chrono::milliseconds connectTimeout = std::chrono::seconds(30);
    /// How long the server may send nothing before the transfer is given up.
    std::chrono::seconds stallTimeout = std::chrono::seconds(60);
    /// For the whole transfer, since a server that sends a byte now and then never stalls.
    std::chrono::milliseconds timeout = std::chrono::minutes(10);
    /// In bytes, unpacked.
    std::uint64_t largestBody = std::uint64_t(1) << 30;
    int mostRedirects = 20;
    /// A PEM file of the certificate authorities to trust; empty for the system's.
    std::string authoritiesFile = {};
    /// Called with the number of bytes of the unpacked body that have come, whenever it grows. On the thread
    /// that fetches; must not throw.
    std::function<void(std::uint64_t received)> progress = {};
    /// Whether a numeric address belongs to this machine, so that no public server may redirect to it. On the
    /// thread that fetches; must not throw.
    std::function<bool(const std::string& address)> isOwn = isOwnAddress;

    /// The default options. Main thread only; tests change them.
    static FetchOptions& standard();
};

/// Loads one page over http or https and returns its body, unpacked but otherwise unchanged. Certificates are
/// checked. Redirects are followed, but not from https to http, and not from a public server to an address of
/// this machine: the author of a page must not choose what is requested from the user's own machine. Blanks
/// around the address are ignored, and an address without a scheme is tried over https. The status is
/// ignored: an error page has a body, too. The environment variables for proxies apply. Callable on any
/// thread; the network library is loaded at the first call.
///
/// Throws ConnectionException, which names the address and the reason, if the body did not come completely,
/// also after a request to `stop`, which ends the transfer at once. Throws OutOfMemoryException if there is
/// not enough memory, and RuntimeException if there is no libcurl.
std::string fetch(std::string_view url, const FetchOptions& options = FetchOptions::standard(),
    const std::stop_token& stop = {});

/// The host in an address with or without a scheme; empty if there is none.
std::string hostOf(std::string_view url);

} // namespace quilvane
