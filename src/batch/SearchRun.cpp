// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/SearchRun.h"

#include "batch/readerRules.h"
#include "batch/runRules.h"
#include "framework/System.h"
#include "framework/documents/WordFileMBS.h"
#include "framework/files/BinaryStream.h"
#include "framework/files/availableMemory.h"
#include "framework/files/displayName.h"
#include "framework/keepWindowPainted.h"
#include "scan/AddressScanner.h"
#include "scan/TextPieces.h"

#include <algorithm>
#include <utility>

namespace quilvane {

namespace {

/// What is found in a Word file that can't be read, once for each.
constexpr const char* sampleAddress = "sample@example.com";

} // namespace

/// Stages the addresses of one text, which comes in pieces, and counts them in end(). Without end() the
/// destructor takes them back.
class SearchRun::Staging {
public:
    explicit Staging(SearchRun& run)
        : m_run(run)
        , m_before(run.resultArray.size())
    {
    }
    ~Staging()
    {
        if (!m_ended)
            m_run.resultArray.truncate(m_before);
    }
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;

    void scan(std::string_view piece)
    {
        constexpr std::size_t lookAtClockEvery = 4096; // rows
        StagedRows& rows = m_run.resultArray;
        forEachAddress(piece, [&rows](std::string_view address) {
            rows.append(address);
            if (rows.size() % lookAtClockEvery == 0)
                keepWindowPainted();
        });
    }

    void end()
    {
        // Matches beyond this number are counted, but not kept for doPDFCheckThread: a second copy of
        // millions of them would need as much memory as the list.
        constexpr std::size_t mostKept = 100'000;
        const std::size_t found = m_run.resultArray.size() - m_before;
        m_run.m_lastMatches.truncate(0);
        for (std::size_t i = m_before; i < m_before + std::min(found, mostKept); ++i)
            m_run.m_lastMatches.append(m_run.resultArray[i]);
        m_run.m_lastMatchCount = std::int64_t(found);
        m_run.rCounter += m_run.m_lastMatchCount;
        m_ended = true;
        m_run.resultArray.limitDuplicates();
    }

private:
    SearchRun& m_run;
    std::size_t m_before;
    bool m_ended = false;
};

void SearchRun::doTextThread(const Ref<FolderItem>& f)
{
    forgetText();
    currentFile = f->Name();
    const Ref<TextInputStream> stream = f->OpenAsTextFile();
    if (!stream) {
        account.left(f->NativePath(), RunAccount::Left::NotOpened);
        return;
    }
    stageStream(*stream);
    stream->Close();
    account.read(f->NativePath(), FileReader::Text);
}

void SearchRun::doCSVFolderThread(const Ref<FolderItem>& f, const Ref<TextInputStream>& opened)
{
    forgetText();
    stageStream(*opened);
    opened->Close();
    account.read(f->NativePath(), FileReader::Delimited);
}

void SearchRun::doWordFolderThread(const Ref<FolderItem>& f)
{
    if (nameHas(lockFilePattern, f->Name())) {
        account.left(f->NativePath(), RunAccount::Left::LockFile);
        return;
    }
    const Ref<BinaryStream> stream = BinaryStream::Open(*f);
    const Ref<WordFileMBS> document = WordFileMBS::OpenData(stream->Read(stream->Length()));
    forgetText();
    stageText(document ? document->Text() : sampleAddress);
    stream->Close();
    if (document) {
        account.read(f->NativePath(), FileReader::Word);
    } else {
        account.left(f->NativePath(), RunAccount::Left::NotWord);
        System::DebugLog(displayPath(f->NativePath()) + ": " + document.whyNil());
    }
}

void SearchRun::doPDFCheckThread()
{
    if (!searchText.empty()) {
        stageText(std::exchange(searchText, {}));
        return;
    }
    for (std::size_t i = 0; i < m_lastMatches.size(); ++i)
        resultArray.append(m_lastMatches[i]);
    rCounter += m_lastMatchCount;
    resultArray.limitDuplicates();
}

void SearchRun::forgetText()
{
    searchText.clear();
    m_lastMatches.truncate(0);
    m_lastMatchCount = 0;
}

void SearchRun::accountFor(const FolderItem& file, bool isListed, std::span<const ReaderRule> rules)
{
    account.met(file.NativePath());
    const std::string extension = lastExtension(file.Name());
    const std::vector<FileReader> readers = readersFor(rules, extension);
    const bool isPdf = nameHas("\\.pdf", extension);
    if (isListed && !readers.empty() && !isPdf)
        return;
    using enum RunAccount::Left;
    account.left(file.NativePath(),
        isPdf                                       ? PdfInFolder
            : nameHas(lockFilePattern, file.Name()) ? LockFile
            : nameHas("\\.doc", extension)          ? OldWordBelow
                                                    : OtherKind);
}

void SearchRun::accountForSingle(const FolderItem& file, std::span<const FileReader> readers)
{
    account.met(file.NativePath());
    if (readers.empty())
        account.left(file.NativePath(), RunAccount::Left::OtherKind);
}

void SearchRun::accountForFolder(const FolderItem& folder)
{
    if (folder.whyNotListed().empty())
        return;
    account.folderNotListed(folder.NativePath());
    System::DebugLog(folder.whyNotListed());
}

void SearchRun::readStaged(FileReader reader, const Ref<FolderItem>& f)
{
    switch (reader) {
    case FileReader::Word:
        doWordFolderThread(f);
        break;
    case FileReader::PDF:
        doPDFCheckThread(); // reads no file: it finds the text of the previous one again
        break;
    case FileReader::Text:
        doTextThread(f);
        break;
    case FileReader::Delimited:
        if (const Ref<TextInputStream> stream = f->OpenAsTextFile())
            doCSVFolderThread(f, stream);
        else // doPDFCheckThread still finds the previous text
            account.left(f->NativePath(), RunAccount::Left::NotOpened);
        break;
    }
}

void SearchRun::tellItem(std::size_t i, const FolderItem& f)
{
    myProgressText = searchingText(i + 1, itemArrayZ.size(), f.Name());
    counter = std::int64_t(i);
    nextOne = progressValue(i, itemArrayZ.size());
}

void SearchRun::stageText(std::string_view text)
{
    Staging staging(*this);
    staging.scan(text);
    staging.end();
}

void SearchRun::stageStream(TextInputStream& stream)
{
    Staging staging(*this);
    readInPieces(stream, [&staging](std::string_view piece) { staging.scan(piece); });
    staging.end();
}

void readInPieces(TextInputStream& stream, const std::function<void(std::string_view)>& take)
{
    TextPieces pieces;
    while (const std::size_t count = stream.Read(pieces.room())) {
        take(pieces.take(count));
        // A text in which nothing can be cut is kept whole, in a buffer that may double at the next read.
        requireMemory(2 * pieces.rest().size(), "A word in this file is too long");
    }
    take(pieces.rest());
}

} // namespace quilvane
