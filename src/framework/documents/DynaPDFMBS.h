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
/// The document is read in the closed room: OpenImportFile begins, ImportPDFFile takes the texts of all pages
/// over, and what is asked then costs no more time. What makes an operation fail fires the error event once,
/// as an error. What the engine finds amiss in a document that it can read all the same fires it as one
/// warning, when all pages are there. When reading it fails, to the limits or to a fault, the document is
/// gone: it has no pages, and what is asked of it fails without another event.
///
/// Nobody wants to be told of each of a million bad pages. After three in a row that failed, or eight in all,
/// the others count as empty. If there is no good page any more, the document ends with the last good one or
/// with the last one tried, and one error says so.
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

    /// 0 if the file can be read, and -1 if not; a damaged one is repaired as far as it goes. A password is
    /// not looked at: a document that asks for one can't be read. Throws RuntimeException, which names the
    /// reader, if documents can't be read at all.
    int OpenImportFile(const FolderItem& file, int pwdType = 0, const std::string& password = {});

    /// Takes all pages of the open file over into the new document, and returns how many they are; -1 if that
    /// fails. The new document is empty, so they begin at its page 1, whatever `destPage` says. The scale has
    /// nothing to do with the text.
    int ImportPDFFile(int destPage, double scaleX = 1.0, double scaleY = 1.0);

    /// Of the new document; 0 before the import. May go down while the pages are gone through.
    int GetPageCount() const { return static_cast<int>(m_pages.size()); }

    /// Opens the page of that number, from 1, in place of the open one. False if it can't be made.
    bool EditPage(int pageNum);

    /// The text of the open page in the order of the page's own drawing, UTF-8, so that no address is torn;
    /// empty if none is open. `removeText` changes nothing: no page is ever written.
    std::string ExtractPageText(bool removeText = false);

    /// False if no page is open.
    bool EndPage();

protected:
    /// `errorType` holds warningType or is 0. Fired within the operation, when the engine is at rest. -1
    /// stops the document: it has no pages any more, and nothing more is told of it; 0 goes on.
    virtual int Event_Error(int errorCode, const std::string& errorMessage, int errorType);

private:
    struct Page {
        bool isReadable = false;
        std::string text; // or why it can't be read
    };

    /// Begins to read m_source. If it is none to be read, says why.
    bool openSource();
    /// Takes the pages as they come. False, with the reason, if they don't.
    bool receivePages(std::string& whyNot);
    void tellOfImport();
    bool failPage(int pageNum, const std::string& reason); // false
    void leaveOutLastPages(std::size_t pagesTried);
    /// The error event, with what it may do to the document.
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
    std::vector<Page> m_pages;
    std::vector<std::string> m_warnings;
    bool m_isImported = false;
    int m_openPage = 0; // 0 if none is
    int m_lastBadPage = 0;
    int m_badPagesInARow = 0;
    int m_badPages = 0;
    bool m_isTiredOfBadPages = false;
    bool m_hasStopped = false; // by the error event
};

} // namespace quilvane
