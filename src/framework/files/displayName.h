// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// A path or name, which may hold any bytes, as a text for labels and dialogs: valid UTF-8 on one line. Bytes
/// that are no UTF-8, and characters that are invisible or change the direction of the text, are shown as
/// \x1F or \u202E. Only for display: the file can't be found by the result.
std::string displayPath(std::string_view bytes);

} // namespace quilvane
