// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

/// Whether the row holds the letters png, in upper or lower case, after at least one byte that is no line
/// feed. Names of pictures do.
///
/// That byte need not be a dot, on purpose: "xpng@b.com" and "a@png.com" count too; "png@b.com" does not.
bool looksLikePictureName(std::string_view row);

} // namespace quilvane
