// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// The text of a Word 6 to Word 2003 document (.doc), UTF-8: the body first, then notes, headers, comments
/// and text boxes; text marked as deleted is left out, and the target of a mail link stands on a line of its
/// own. Of a damaged container, whatever textRuns() finds in it. At most 128 MB, the rest is left out.
///
/// Nothing for bytes that are no compound file, for a whole one without a Word document, and for an encrypted
/// one: its bytes hold no text, so there is nothing to salvage either.
std::optional<std::string> textOfBinaryWord(std::string_view bytes);

} // namespace quilvane
