// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/ReadingBudget.h"

#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// The text, UTF-8, of a document of any kind that Word opens; the kind is recognised from the bytes. A
/// damaged document gives the text that is left. Nothing for any other bytes and for an encrypted document.
std::optional<std::string> documentText(std::string_view bytes);

/// The same for a document inside of another one, whose budget it shares.
std::optional<std::string> documentText(std::string_view bytes, ReadingBudget& budget);

} // namespace quilvane
