// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// Character sets go by the numbers that Windows gives them, its "code pages".
namespace codePages {
inline constexpr int utf16LittleEndian = 1200;
inline constexpr int utf16BigEndian = 1201;
inline constexpr int westernEurope = 1252;
inline constexpr int macintosh = 10000;
inline constexpr int utf8 = 65001;
} // namespace codePages

/// The character set that a text names as "charset=", in quotes or not, as a Content-Type header or a meta
/// element does; empty if it names none.
std::string charsetNamedIn(std::string_view text);

/// The code page that pages and messages mean by a name; nothing for an unknown one.
std::optional<int> codePageNamed(std::string_view name);

/// `bytes`, which are in that code page, as UTF-8. What is no character in it becomes U+FFFD. A code page
/// that is not known here stands for Western Europe's. On any thread.
std::string toUtf8(std::string_view bytes, int codePage);

/// Opens the system's converter of every code page that is known here, for this thread. From then on no
/// conversion needs a file; without, each is opened when it is first needed, and kept.
void openAllConverters();

} // namespace quilvane
