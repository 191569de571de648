// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/pdf/PdfDocument.h"

#include "documents/pdf/MessageFilter.h"
#include "documents/pdf/pageText.h"

#include <algorithm>
#include <limits>

#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

namespace quilvane {

namespace {

/// The largest side of a page, in its own units: ISO 32000-1, annex C.
constexpr double largestSide = 14400;
/// The page and a wide margin around it. The library cuts text off at the border of the rectangle that it is
/// given, and some text sticks out of its page.
const poppler::rectf everywhere(-largestSide, -largestSide, 3 * largestSide, 3 * largestSide);

/// Called by the library with "poppler/error (12): text". The 12 is a position in the file and may be
/// missing; a line end is written as <0a>.
void addMessage(const std::string& line, void* filter)
{
    constexpr std::string_view separator = ": ";
    constexpr std::string_view lineEnd = "<0a>";
    std::string_view message = line;
    message.remove_prefix(std::min(message.find(separator) + separator.size(), message.size()));
    if (message.ends_with(lineEnd))
        message.remove_suffix(lineEnd.size());
    static_cast<MessageFilter*>(filter)->add(message);
}

// A page with a word in one of the fonts that no document needs to embed.
constexpr std::string_view smallestDocument = R"(%PDF-1.4
1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj
2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj
3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/Contents 4 0 R/Resources<</Font<</F 5 0 R>>>>>>endobj
4 0 obj<</Length 26>>stream
BT /F 1 Tf (a@b.org) Tj ET
endstream endobj
5 0 obj<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>endobj
trailer<</Root 1 0 R>>
)";

} // namespace

struct PdfDocument::Parts {
    MessageFilter messages;
    std::unique_ptr<poppler::document> document;
};

PdfDocument::PdfDocument(std::string_view bytes, const std::string& path)
    : m_parts(std::make_unique<Parts>())
{
    using poppler::document;
    poppler::set_debug_error_function(addMessage, &m_parts->messages);
    m_parts->document.reset(bytes.size() <= std::numeric_limits<int>::max()
            ? document::load_from_raw_data(bytes.data(), static_cast<int>(bytes.size()))
            : document::load_from_file(path));
}

PdfDocument::~PdfDocument() = default;

bool PdfDocument::isOpen() const
{
    return m_parts->document != nullptr;
}

bool PdfDocument::isLocked() const
{
    return m_parts->document->is_locked();
}

int PdfDocument::pageCount() const
{
    return std::max(m_parts->document->pages(), 0);
}

std::optional<std::string> PdfDocument::pageText(int number) const
{
    const std::unique_ptr<poppler::page> page(m_parts->document->create_page(number - 1));
    if (!page)
        return std::nullopt;
    // The library's reading order joins words over hyphens, which makes addresses that nobody wrote.
    const poppler::byte_array text = page->text(everywhere, poppler::page::raw_order_layout).to_utf8();
    return tidyPageText({ text.data(), text.size() });
}

std::vector<std::string> PdfDocument::takeMessages()
{
    return m_parts->messages.take();
}

void warmPdfLibrary()
{
    // Never closed: the library frees what it keeps when its last document is closed.
    static const auto* const document = new PdfDocument(smallestDocument, {});
    document->pageText(1);
}

} // namespace quilvane
