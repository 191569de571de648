// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quilvane {

/// `text` with each %XX replaced by its byte (RFC 3986, section 2.1). Any other '%' stays.
std::string percentDecoded(std::string_view text);

/// The target of a mail link: all that follows "mailto:", decoded and in plain characters; empty for another
/// link.
std::string mailTarget(std::string_view link);

/// Whether the address of a mail link is only the end of a longer address in the text: some program made a
/// link of "smith@example.org" in "john.smith@example.org". `at` is the place in `text`, UTF-8, where the
/// text of the link begins.
bool isTailOfAddress(std::string_view target, std::string_view text, std::size_t at);

} // namespace quilvane
