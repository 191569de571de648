// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quilvane {

/// `text` with the byte that each %XX stands for (RFC 3986, section 2.1). What is no such triplet stays.
std::string percentDecoded(std::string_view text);

/// What a mail link leads to, all that follows "mailto:", decoded and in plain characters; empty for another
/// link.
std::string mailTarget(std::string_view link);

/// Whether the address that a mail link leads to is only the second half of the one that stands where the
/// link does: somebody made a link of "smith@example.org" in "john.smith@example.org". `at` is the place in
/// `text`, UTF-8, where what the link shows begins.
bool isTailOfAddress(std::string_view target, std::string_view text, std::size_t at);

} // namespace quilvane
