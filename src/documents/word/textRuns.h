// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// The text that a damaged file still holds, UTF-8, one run a line: runs of at least four printable
/// characters of one byte each, or of two (low byte first, at even and odd offsets). Printable are ASCII and
/// the letters of Latin, Greek and Cyrillic. At most 128 MB, the rest is left out. Empty if there are none.
std::string textRuns(std::string_view bytes);

} // namespace quilvane
