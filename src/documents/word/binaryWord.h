// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// The text of a document of Word 2 or Word 6 to 2003 (.doc), UTF-8: the body first, then notes, headers,
/// comments and text boxes; text marked as deleted is left out, and the target of a mail link stands on a
/// line of its own. At most 128 MB, the rest is left out.
///
/// Nothing for bytes that are no such document and for an encrypted one. Nothing either if its container or
/// tables are damaged, since a part of the text would be missing; textRuns() can then find more.
std::optional<std::string> textOfBinaryWord(std::string_view bytes);

} // namespace quilvane
