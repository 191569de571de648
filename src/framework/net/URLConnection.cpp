// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/URLConnection.h"

#include "framework/exceptions.h"
#include "framework/net/fetch.h"

#include <chrono>

namespace quilvane {

std::string URLConnection::SendSync(std::string_view method, std::string_view url, int timeout)
{
    if (method != "GET")
        throw ConnectionException(url, "pages can be read only, not sent");
    FetchOptions options = FetchOptions::standard();
    if (timeout > 0)
        options.timeout = std::chrono::seconds(timeout);
    return fetch(url, options).body;
}

} // namespace quilvane
