// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// A PDF document and the text of its pages. One at a time in a process: the PDF library has one place for
/// its messages.
class PdfDocument {
public:
    /// The bytes must outlive the object. If they are more than the library can take from memory, it reads
    /// the file at `path`.
    PdfDocument(std::string_view bytes, const std::string& path);
    ~PdfDocument();
    PdfDocument(const PdfDocument&) = delete;
    PdfDocument& operator=(const PdfDocument&) = delete;

    /// False for what is damaged beyond repair or no PDF document.
    bool isOpen() const;
    /// Whether it asks for a password before it is read.
    bool isLocked() const;
    /// As the document says, but never negative.
    int pageCount() const;

    /// The text of page `number`, from 1, in the order in which the page draws it, UTF-8, tidied so that no
    /// address is torn. Nothing if there is no such page.
    std::optional<std::string> pageText(int number) const;

    /// The library's messages since the last call, filtered by a MessageFilter.
    std::vector<std::string> takeMessages();

private:
    struct Parts;

    std::unique_ptr<Parts> m_parts;
};

/// Lets the PDF library load what it keeps for all documents.
void warmPdfLibrary();

} // namespace quilvane
