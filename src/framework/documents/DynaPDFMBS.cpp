// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/documents/DynaPDFMBS.h"

#include "documents/reader/pdfMessages.h"
#include "framework/documents/internal/PdfChild.h"
#include "framework/exceptions.h"
#include "framework/files/FolderItem.h"
#include "framework/files/InputFile.h"
#include "framework/files/displayName.h"

#include <optional>
#include <utility>

namespace quilvane {

namespace {

constexpr int failed = -1;
constexpr int stop = -1; // of the error event
constexpr int errorType = 0;

/// What the PDF library said last, as it failed.
std::string reasonIn(const PdfReply& reply)
{
    return reply.messages.empty() ? "." : ": " + displayPath(reply.messages.back()) + '.';
}

} // namespace

DynaPDFMBS::DynaPDFMBS(PdfLimits limits)
    : m_limits(limits)
{
}

DynaPDFMBS::~DynaPDFMBS() = default;

bool DynaPDFMBS::CreateNewPDF(const Ref<FolderItem>& outPDF)
{
    closeDocument();
    if (!outPDF)
        return true;
    fail(notSupported, "A PDF document can be made in memory only.");
    return false;
}

bool DynaPDFMBS::SetImportFlags(std::int64_t)
{
    return true;
}

int DynaPDFMBS::OpenImportFile(const FolderItem& file, int, const std::string& password)
{
    closeDocument();
    m_fileName = displayPath(file.Name());
    std::string whyNot;
    const InputFile document
        = InputFile::open(file, InputFile::Access::Read, InputFile::NotRegular::Refused, whyNot);
    if (!document.isOpen()) {
        fail(fileNotOpened, whyNot);
        return failed;
    }
    try {
        m_child = std::make_unique<PdfChild>(document.descriptor(), m_limits);
    } catch (const RuntimeException& error) {
        fail(engineLost, error.what());
        return failed;
    }
    const auto reply = perform(
        { .operation = PdfRequest::Operation::Open, .password = password.substr(0, longestPdfPassword) });
    if (!reply) {
        closeDocument();
        return failed;
    }
    m_sourcePageCount = reply->pageCount;
    return 0;
}

int DynaPDFMBS::ImportPDFFile(int destPage, double, double)
{
    if (destPage != 1) {
        fail(notSupported, "Pages can be imported from page 1 on only.");
        return failed;
    }
    if (!m_child)
        return failed;
    m_pageCount = m_sourcePageCount;
    return m_pageCount;
}

bool DynaPDFMBS::EditPage(int pageNum)
{
    m_openPage = 0;
    if (perform({ .operation = PdfRequest::Operation::EditPage, .page = pageNum }))
        m_openPage = pageNum;
    return m_openPage != 0;
}

std::string DynaPDFMBS::ExtractPageText(bool removeText)
{
    if (m_openPage == 0)
        return {};
    if (removeText) {
        fail(notSupported, "The text of a page can't be removed.");
        return {};
    }
    auto reply = perform({ .operation = PdfRequest::Operation::ExtractText });
    return reply ? std::move(reply->text) : std::string();
}

bool DynaPDFMBS::EndPage()
{
    return std::exchange(m_openPage, 0) != 0;
}

int DynaPDFMBS::Event_Error(int, const std::string&, int)
{
    return 0;
}

std::optional<PdfReply> DynaPDFMBS::perform(const PdfRequest& request)
{
    if (!m_child)
        return std::nullopt;
    std::string whyNot;
    std::optional<PdfReply> reply = m_child->ask(request, whyNot);
    if (!reply) {
        closeDocument();
        fail(engineLost, whyNot);
        return std::nullopt;
    }
    switch (reply->outcome) {
    case PdfReply::Outcome::Done:
        for (const std::string& message : reply->messages)
            if (Event_Error(warning, displayPath(message), warningType) == stop)
                return std::nullopt;
        return reply;
    case PdfReply::Outcome::Damaged:
        fail(documentDamaged, '"' + m_fileName + "\" is damaged or no PDF document" + reasonIn(*reply));
        break;
    case PdfReply::Outcome::Locked:
        fail(documentLocked, '"' + m_fileName + "\" is protected by a password.");
        break;
    case PdfReply::Outcome::NoSuchPage:
        fail(noSuchPage,
            '"' + m_fileName + "\" has no page " + std::to_string(request.page) + " that can be read"
                + reasonIn(*reply));
        break;
    }
    return std::nullopt;
}

void DynaPDFMBS::fail(ErrorCode code, const std::string& message)
{
    Event_Error(code, message, errorType); // what has failed can't be stopped
}

void DynaPDFMBS::closeDocument()
{
    m_child.reset();
    m_sourcePageCount = 0;
    m_pageCount = 0;
    m_openPage = 0;
}

} // namespace quilvane
