// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// The character set that a text names as "charset=", in quotes or not, as a Content-Type header or a meta
/// element does; empty if it names none.
std::string charsetNamedIn(std::string_view text);

/// `bytes`, which are in the character set of that name, as UTF-8. What is no character in it becomes U+FFFD.
/// A name that the system does not know stands for UTF-8. On any thread.
std::string toUtf8(std::string_view bytes, const std::string& charset);

} // namespace quilvane
