// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/documents/DocumentLimits.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quilvane {

class DocumentChild;
class FolderItem;
class InputFile;

/// The PDF engine, for one document: CreateNewPDF, SetImportFlags, OpenImportFile, ImportPDFFile, then for
/// each page EditPage, ExtractPageText, EndPage.
///
/// The document is read in another process: OpenImportFile begins, ImportPDFFile takes over the texts of all
/// pages, and the calls after it cost no more time. A failed operation fires the error event once, as an
/// error. Faults in a document that can still be read fire it once, as a warning, when all pages have come.
/// When reading fails, because of the limits or a crash, the document is lost: it has no pages, and further
/// operations fail without another event.
///
/// If the time runs out after some pages, the others count as empty, and the last one is still read; if it
/// can't be read, the document ends before the others. One error says so.
///
/// The user must not be told of each of a million bad pages. After three bad pages in a row, or eight in all,
/// further ones count as empty. The document then ends with its last good page, or with the last page tried
/// if that comes later. If this leaves out pages, one error says so.
class DynaPDFMBS {
public:
    /// The bit in the type of the error event that makes it a warning.
    static constexpr int warningType = 0x2000000;

    enum ErrorCode : int {
        warning = 1,
        fileNotOpened = 2,
        documentDamaged = 3,
        documentLocked = 4,
        noSuchPage = 5,
        engineLost = 6,
        pagesLeftOut = 7,
    };

    explicit DynaPDFMBS(const DocumentLimits& limits = {});
    virtual ~DynaPDFMBS();
    DynaPDFMBS(const DynaPDFMBS&) = delete;
    DynaPDFMBS& operator=(const DynaPDFMBS&) = delete;

    /// An empty document in memory. Always true: there is no output file.
    bool CreateNewPDF(const Ref<FolderItem>& outPDF = {});

    /// Always true: no flag of the import has to do with the text.
    bool SetImportFlags(std::int64_t flags);

    /// 0 if the file can be read, and -1 if not; a damaged one is repaired as far as possible. The password
    /// is ignored: a document that asks for one can't be read. Throws RuntimeException, which names the
    /// reader, if documents can't be read at all.
    int OpenImportFile(const FolderItem& file, int pwdType = 0, const std::string& password = {});

    /// Imports all pages of the open file into the new document, and returns their number; -1 if that fails.
    /// The new document is empty, so they begin at its page 1, whatever `destPage` says. The scale has no
    /// effect on the text.
    int ImportPDFFile(int destPage, double scaleX = 1.0, double scaleY = 1.0);

    /// Of the new document; 0 before the import. May become smaller while pages are opened.
    int GetPageCount() const { return static_cast<int>(m_pages.size()); }

    /// Opens page `pageNum`, from 1, and closes the page that was open. False if it can't be opened.
    bool EditPage(int pageNum);

    /// The text of the open page, UTF-8, in the order in which the page draws it; empty if none is open.
    /// `removeText` changes nothing: no page is ever written.
    std::string ExtractPageText(bool removeText = false);

    /// False if no page is open.
    bool EndPage();

protected:
    /// `errorType` contains warningType or is 0. Fired during the operation. A result of -1 stops the
    /// document: it has no pages any more, and no further event is fired for it; 0 goes on.
    virtual int Event_Error(int errorCode, const std::string& errorMessage, int errorType);

private:
    struct Page {
        bool isReadable = false;
        std::string text; // or why it can't be read
    };

    /// Begins to read m_source. If it can't be read, fires the error event with the reason.
    bool openSource();
    /// Receives the pages. False, with the reason, if that fails.
    bool receivePages(std::string& whyNot);
    /// For a document whose time has run out. If its last page comes, the pages that were left out are empty.
    void receiveLastPage(std::size_t room);
    void tellOfImport();
    void failPage(int pageNum, const std::string& reason);
    void leaveOutLastPages(std::size_t pagesTried);
    /// Fires the error event, and stops the document if its result says so.
    void tell(int code, const std::string& message, int type);
    void fail(ErrorCode code, const std::string& message);
    void lose(const std::string& whyNot);
    std::string quotedName() const;
    void closeDocument();

    const DocumentLimits m_limits;
    std::string m_fileName; // as it is shown
    std::unique_ptr<InputFile> m_source;
    std::unique_ptr<DocumentChild> m_child; // from OpenImportFile to ImportPDFFile
    std::size_t m_sourcePageCount = 0;
    std::size_t m_pagesInTime = 0; // received before the time ran out
    std::vector<Page> m_pages;
    std::vector<std::string> m_warnings;
    bool m_isImported = false;
    int m_openPage = 0; // 0 if none is
    int m_lastBadPage = 0;
    int m_badPagesInARow = 0;
    int m_badPages = 0;
    bool m_ignoresBadPages = false;
    bool m_hasStopped = false; // by the error event
};

} // namespace quilvane
