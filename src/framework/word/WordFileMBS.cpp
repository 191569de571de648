// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/word/WordFileMBS.h"

#include "framework/word/ReadingBudget.h"
#include "framework/word/documentText.h"

#include <optional>
#include <utility>

namespace quilvane {

Ref<WordFileMBS> WordFileMBS::OpenData(std::string_view data)
{
    ReadingBudget budget;
    std::optional<std::string> text = documentText(data, budget);
    if (!text)
        return Ref<WordFileMBS>::nil(
            data.empty() ? "The document is empty." : "The document is encrypted or no Word document.");
    return Ref<WordFileMBS>::make(std::move(*text));
}

WordFileMBS::WordFileMBS(std::string text)
    : m_text(std::move(text))
{
}

} // namespace quilvane
