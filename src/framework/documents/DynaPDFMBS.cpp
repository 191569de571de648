// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/documents/DynaPDFMBS.h"

#include "framework/documents/internal/DocumentChild.h"
#include "framework/files/FolderItem.h"
#include "framework/files/InputFile.h"
#include "framework/files/displayName.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace quilvane {

namespace {

constexpr int failed = -1;
constexpr int stop = -1; // of the error event
constexpr int errorType = 0;
constexpr int mostBadPagesInARow = 3;
constexpr int mostBadPages = 8;

/// The last message of the PDF library, as the end of a sentence.
std::string because(const std::string& reason)
{
    return reason.empty() ? "." : ": " + displayPath(reason) + '.';
}

} // namespace

DynaPDFMBS::DynaPDFMBS(const DocumentLimits& limits)
    : m_limits(limits)
{
}

DynaPDFMBS::~DynaPDFMBS() = default;

bool DynaPDFMBS::CreateNewPDF(const Ref<FolderItem>&)
{
    closeDocument();
    return true;
}

bool DynaPDFMBS::SetImportFlags(std::int64_t)
{
    return true;
}

int DynaPDFMBS::OpenImportFile(const FolderItem& file, int, const std::string&)
{
    closeDocument();
    m_fileName = displayPath(file.Name());
    std::string whyNot;
    m_source = std::make_unique<InputFile>(InputFile::open(file, InputFile::NotRegular::Refused, whyNot));
    if (!m_source->isOpen()) {
        fail(fileNotOpened, whyNot);
        return failed;
    }
    bool isOpen = false;
    try {
        isOpen = openSource();
    } catch (const ReaderLost&) {
        isOpen = openSource(); // by another reader
    }
    return isOpen ? 0 : failed;
}

bool DynaPDFMBS::openSource()
{
    m_child = std::make_unique<DocumentChild>(
        ReaderOrder{ .kind = DocumentKind::Pdf, .length = UINT64_MAX }, m_source->descriptor(), m_limits);
    std::string frame;
    std::string whyNot;
    std::optional<PdfOpening> opening;
    if (m_child->receive(frame, largestPdfHead, whyNot)) {
        opening = decodeOpening(frame);
        if (!opening)
            whyNot = m_child->refuse();
    }
    if (opening && opening->outcome == PdfOpening::Outcome::Done) {
        m_sourcePageCount = opening->pageCount;
        return true;
    }
    m_child.reset();
    if (!opening)
        lose(whyNot);
    else if (opening->outcome == PdfOpening::Outcome::Locked)
        fail(documentLocked, quotedName() + " is protected by a password.");
    else
        fail(documentDamaged, quotedName() + " is damaged or no PDF document" + because(opening->reason));
    return false;
}

int DynaPDFMBS::ImportPDFFile(int, double, double)
{
    if (!m_child)
        return failed;
    bool isTaken = false;
    std::string whyNot;
    try {
        isTaken = receivePages(whyNot);
    } catch (const ReaderLost&) {
        // By another reader, from the beginning.
        if (!openSource())
            return failed;
        isTaken = receivePages(whyNot);
    }
    m_child.reset();
    m_isImported = isTaken;
    if (isTaken)
        tellOfImport();
    else
        lose(whyNot);
    return m_isImported ? GetPageCount() : failed;
}

void DynaPDFMBS::lose(const std::string& whyNot)
{
    closeDocument();
    fail(engineLost, quotedName() + " could not be read. " + whyNot);
}

bool DynaPDFMBS::receivePages(std::string& whyNot)
{
    m_pages.clear();
    m_child->resume();
    std::size_t room = longestDocumentText;
    std::string frame;
    while (m_child->receive(frame, room + largestPdfHead, whyNot)) {
        if (std::optional<PdfEnd> end = decodeEnd(frame)) {
            m_warnings = std::move(end->warnings);
            m_pagesInTime = m_pages.size();
            if (m_pagesInTime < m_sourcePageCount)
                receiveLastPage(room);
            return true;
        }
        std::optional<PdfPage> page = decodePage(frame);
        if (!page || m_pages.size() == m_sourcePageCount || page->text.size() > room) {
            whyNot = m_child->refuse();
            return false;
        }
        room -= page->text.size();
        m_pages.push_back({ page->isReadable, std::move(page->text) });
    }
    return false;
}

void DynaPDFMBS::receiveLastPage(std::size_t room)
{
    std::string frame;
    std::string whyNot;
    if (!m_child->receive(frame, room + largestPdfHead, whyNot))
        return;
    std::optional<PdfPage> page = decodePage(frame);
    if (!page || !page->isReadable || page->text.size() > room)
        return;
    m_pages.resize(m_sourcePageCount, { .isReadable = true, .text = {} });
    m_pages.back().text = std::move(page->text);
}

void DynaPDFMBS::tellOfImport()
{
    if (m_pagesInTime < m_sourcePageCount)
        fail(pagesLeftOut,
            quotedName() + " takes too long: of its " + std::to_string(m_sourcePageCount)
                + " pages only the first " + std::to_string(m_pagesInTime)
                + (m_pages.size() == m_pagesInTime ? " were read." : " and the last one were read."));
    if (m_warnings.empty())
        return;
    std::string all;
    for (const std::string& message : m_warnings)
        all += (all.empty() ? "" : "\n") + displayPath(message);
    tell(warning, all, warningType);
}

bool DynaPDFMBS::EditPage(int pageNum)
{
    m_openPage = 0;
    if (!m_isImported)
        return false;
    if (pageNum < 1 || pageNum > GetPageCount()) {
        fail(noSuchPage, quotedName() + " has no page " + std::to_string(pageNum) + '.');
        return false;
    }
    const Page& page = m_pages[static_cast<std::size_t>(pageNum) - 1];
    if (page.isReadable) {
        m_badPagesInARow = 0;
    } else if (!m_ignoresBadPages) {
        failPage(pageNum, page.text);
        return false;
    }
    m_openPage = pageNum;
    return true;
}

void DynaPDFMBS::failPage(int pageNum, const std::string& reason)
{
    if (std::exchange(m_lastBadPage, pageNum) != pageNum) { // the first page is sometimes opened twice
        ++m_badPagesInARow;
        ++m_badPages;
    }
    fail(noSuchPage,
        quotedName() + " has no page " + std::to_string(pageNum) + " that can be read" + because(reason));
    m_ignoresBadPages = m_badPagesInARow == mostBadPagesInARow || m_badPages == mostBadPages;
    if (m_ignoresBadPages)
        leaveOutLastPages(static_cast<std::size_t>(pageNum));
}

void DynaPDFMBS::leaveOutLastPages(std::size_t pagesTried)
{
    const auto lastGood = std::find_if(m_pages.rbegin(), m_pages.rend(), std::mem_fn(&Page::isReadable));
    const std::size_t left = std::max(pagesTried, static_cast<std::size_t>(m_pages.rend() - lastGood));
    const std::size_t before = m_pages.size();
    if (left >= before)
        return; // no page is left out
    m_pages.resize(left);
    fail(pagesLeftOut,
        "The pages of " + quotedName() + " from " + std::to_string(left + 1) + " to " + std::to_string(before)
            + " can't be read either.");
}

std::string DynaPDFMBS::ExtractPageText(bool)
{
    if (m_openPage == 0)
        return {};
    const Page& page = m_pages[static_cast<std::size_t>(m_openPage) - 1];
    return page.isReadable ? page.text : std::string();
}

bool DynaPDFMBS::EndPage()
{
    return std::exchange(m_openPage, 0) != 0;
}

int DynaPDFMBS::Event_Error(int, const std::string&, int)
{
    return 0;
}

void DynaPDFMBS::tell(int code, const std::string& message, int type)
{
    if (m_hasStopped || Event_Error(code, message, type) != stop)
        return;
    closeDocument();
    m_hasStopped = true;
}

void DynaPDFMBS::fail(ErrorCode code, const std::string& message)
{
    tell(code, message, errorType);
}

std::string DynaPDFMBS::quotedName() const
{
    return '"' + m_fileName + '"';
}

void DynaPDFMBS::closeDocument()
{
    m_child.reset();
    m_source.reset();
    m_sourcePageCount = 0;
    m_pagesInTime = 0;
    m_pages.clear();
    m_warnings.clear();
    m_isImported = false;
    m_openPage = 0;
    m_lastBadPage = 0;
    m_badPagesInARow = 0;
    m_badPages = 0;
    m_ignoresBadPages = false;
    m_hasStopped = false;
}

} // namespace quilvane
