// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// What a damaged file still holds of text, UTF-8, one run a line: stretches of at least four printable
/// characters, of one byte (Windows-1252) or of two (UTF-16, little-endian, at even and odd offsets) each.
/// At most 128 MB, the rest is left out. Empty if there are none.
std::string textRuns(std::string_view bytes);

} // namespace quilvane
