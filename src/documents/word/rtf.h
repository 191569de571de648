// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// The text of an RTF document as a reader sees it, UTF-8; the target of a mail link stands on a line of its
/// own. At most 128 MB, the rest is left out. A document that ends too early gives what it has.
/// Nothing for bytes that don't begin like RTF, after an optional byte order mark and white space.
std::optional<std::string> textOfRtf(std::string_view bytes);

} // namespace quilvane
