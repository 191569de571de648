// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// What a damaged file still holds of text, UTF-8, one run a line: stretches of at least four printable
/// characters, of one byte or of two (low byte first, at even and odd offsets) each. Printable are ASCII and
/// the letters of Latin, Greek and Cyrillic. At most 128 MB, the rest is left out. Empty if there are none.
std::string textRuns(std::string_view bytes);

} // namespace quilvane
