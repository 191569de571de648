// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/ReadingBudget.h"

#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// The text, UTF-8, of a document of any kind that Word opens: what kind it is shows in its bytes. Of a
/// damaged one, what text is left. Nothing for bytes that are no such document, and for an encrypted one.
std::optional<std::string> documentText(std::string_view bytes);

/// The same for a document inside of another one, whose budget it shares.
std::optional<std::string> documentText(std::string_view bytes, ReadingBudget& budget);

} // namespace quilvane
