// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"

#include <string>
#include <string_view>

namespace quilvane {

/// A document of a word processor, opened from its bytes: .docx and its kin, .doc of Word 2, 6 and later,
/// RTF, HTML, pages saved as one file, and Word's two XML formats of one file, whatever the file is called.
class WordFileMBS {
public:
    /// Nil, with the reason, for what can't be read: bytes that are no such document, and an encrypted one.
    /// Of a damaged document, what is left. Reading is bounded (see ReadingBudget); what lies beyond is left
    /// out.
    static Ref<WordFileMBS> OpenData(std::string_view data);

    explicit WordFileMBS(std::string text);

    /// UTF-8: body, tables, text boxes, headers, footers, notes and comments, and behind the paragraph where
    /// one stands, on a line of its own, the address that a mail link leads to.
    const std::string& Text() const { return m_text; }

private:
    std::string m_text;
};

} // namespace quilvane
