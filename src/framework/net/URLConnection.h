// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// A request to a web server that the caller waits for.
class URLConnection {
public:
    /// The body of the answer, whatever its status, as bytes. `timeout` is in seconds, for all of the
    /// request; with 0 it may take as long as the server goes on sending. The one method is GET. Blocks: the
    /// event loop stands. Throws what fetch() throws.
    std::string SendSync(std::string_view method, std::string_view url, int timeout);
};

} // namespace quilvane
