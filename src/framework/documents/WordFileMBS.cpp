// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/documents/WordFileMBS.h"

#include "documents/documentText.h"

#include <optional>
#include <utility>

namespace quilvane {

Ref<WordFileMBS> WordFileMBS::OpenData(std::string_view data)
{
    std::optional<std::string> text = documentText(data);
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
