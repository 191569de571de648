// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/documents/DocumentLimits.h"

#include <string>

namespace quilvane {

class FileBytes;

/// A document of a word processor, opened from its bytes: .docx and its kin, .doc of Word 2, 6 and later,
/// RTF, HTML, pages saved as one file, and Word's two XML formats of one file, whatever the file is called.
class WordFileMBS {
public:
    /// Nil, with the reason, for what can't be read: bytes that are no such document, an encrypted one, and
    /// one that exceeds the limits or crashes the child that reads it. A damaged document gives the text that
    /// is left. Throws RuntimeException, which names the reader, if no document can be read at all.
    static Ref<WordFileMBS> OpenData(const FileBytes& data, const DocumentLimits& limits = {});

    explicit WordFileMBS(std::string text);

    /// UTF-8: body, tables, text boxes, headers, footers, notes and comments. The address of a mail link
    /// comes on a line of its own, after the paragraph with the link.
    const std::string& Text() const { return m_text; }

private:
    std::string m_text;
};

} // namespace quilvane
