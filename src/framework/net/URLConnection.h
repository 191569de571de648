// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// A request to a web server that the caller waits for.
class URLConnection {
public:
    /// The body of the answer, as bytes, whatever the status is. Always a GET with the limits of
    /// FetchOptions: `method` and `timeout` have no effect.
    ///
    /// Waits, with the windows painted. After one second a dialog shows how much has come and lets the user
    /// cancel, which ends the calling handler without a report. Throws what fetch() throws.
    std::string SendSync(std::string_view method, std::string_view url, int timeout);
};

} // namespace quilvane
