// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace quilvane {

class FolderItem;
class PdfChild;
struct PdfReply;
struct PdfRequest;

/// What one document may cost. A healthy page takes milliseconds and some 20 MiB.
struct PdfLimits {
    /// For each operation, on the clock.
    std::chrono::milliseconds time{ 4000 };
    /// Of addresses, in bytes: what is in use never is more.
    std::uint64_t memory = std::uint64_t(512) << 20;
};

/// The PDF engine, for one document: CreateNewPDF, SetImportFlags, OpenImportFile, ImportPDFFile, then for
/// each page EditPage, ExtractPageText, EndPage.
///
/// The document is read by a child process, which OpenImportFile starts and which goes with the object. What
/// makes an operation fail fires the error event once, as an error; what the engine finds amiss in a document
/// that it can read all the same fires it as a warning. When the child is lost, to the limits or to a fault,
/// the document is gone, too: it has no pages any more, and what is asked of it fails without another event.
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
        notSupported = 7,
    };

    explicit DynaPDFMBS(PdfLimits limits = {});
    virtual ~DynaPDFMBS();
    DynaPDFMBS(const DynaPDFMBS&) = delete;
    DynaPDFMBS& operator=(const DynaPDFMBS&) = delete;

    /// An empty document in memory. With an output file, which the engine has no use for, it fails.
    bool CreateNewPDF(const Ref<FolderItem>& outPDF = {});

    /// Always true: no flag of the import has to do with the text.
    bool SetImportFlags(std::int64_t flags);

    /// 0 if the file can be read, and -1 if not; a damaged one is repaired as far as it goes. The password
    /// may be the owner's or the user's, whatever its type says.
    int OpenImportFile(const FolderItem& file, int pwdType = 0, const std::string& password = {});

    /// Takes all pages of the open file over into the new document, and returns how many they are; -1 without
    /// an open file. The new document is empty, so they begin at its page 1: any other one fails. The scale
    /// has nothing to do with the text.
    int ImportPDFFile(int destPage, double scaleX = 1.0, double scaleY = 1.0);

    /// Of the new document; 0 before the import.
    int GetPageCount() const { return m_pageCount; }

    /// Opens the page of that number, from 1, in place of the open one. False if it can't be made.
    bool EditPage(int pageNum);

    /// The text of the open page in the order of the page's own drawing, UTF-8, so that no address is torn;
    /// empty if none is open or if it fails, as it does with `removeText`.
    std::string ExtractPageText(bool removeText = false);

    /// False if no page is open.
    bool EndPage();

protected:
    /// `errorType` holds warningType or is 0. Fired within the operation, when the engine is at rest. -1
    /// stops the operation, which then fails, and its other warnings are not told; 0 goes on.
    virtual int Event_Error(int errorCode, const std::string& errorMessage, int errorType);

private:
    /// The reply of an operation that has succeeded and was not stopped. All else has fired the event.
    std::optional<PdfReply> perform(const PdfRequest& request);
    void fail(ErrorCode code, const std::string& message);
    void closeDocument();

    const PdfLimits m_limits;
    std::unique_ptr<PdfChild> m_child;
    std::string m_fileName; // as it is shown
    int m_sourcePageCount = 0;
    int m_pageCount = 0;
    int m_openPage = 0; // 0 if none is
};

} // namespace quilvane
