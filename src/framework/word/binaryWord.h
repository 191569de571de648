// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// The text of a Word 6 to Word 2003 document (.doc), UTF-8: the body first, then notes, headers, comments and
/// text boxes; the target of a mail link stands on a line of its own. At most 128 MB, the rest is left out.
/// Nothing for bytes that are no such document, for an encrypted one, and for a damaged container.
std::optional<std::string> textOfBinaryWord(std::string_view bytes);

} // namespace quilvane
