// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// A request to a web server that the caller waits for.
class URLConnection {
public:
    /// The body of the answer, whatever its status, as bytes. It is a GET within the bounds of FetchOptions,
    /// whatever `method` and `timeout` say.
    ///
    /// The handler that calls it waits here, with the windows painted; from one second on a dialog shows how
    /// much has come and lets the user cancel, which ends the handler without a word. Throws what fetch()
    /// throws.
    std::string SendSync(std::string_view method, std::string_view url, int timeout);
};

} // namespace quilvane
