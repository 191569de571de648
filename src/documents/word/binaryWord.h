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
/// Nothing for bytes that are no such document, for an encrypted one, and for one whose container or tables
/// are damaged, as a part of its text would be missing; textRuns() then finds what there is.
std::optional<std::string> textOfBinaryWord(std::string_view bytes);

} // namespace quilvane
