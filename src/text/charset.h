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

/// The code page for a name in pages and messages; nothing for an unknown one.
std::optional<int> codePageNamed(std::string_view name);

/// Converts `bytes` from that code page to UTF-8. Invalid characters become U+FFFD. For an unknown code page
/// that of Western Europe is used. On any thread.
std::string toUtf8(std::string_view bytes, int codePage);

/// Opens the system's converters of all known code pages, for this thread. After that no conversion opens a
/// file. Otherwise each converter is opened when it is first needed, and kept.
void openAllConverters();

} // namespace quilvane
