// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "batch/RunAccount.h"
#include "batch/StagedRows.h"
#include "framework/Ref.h"
#include "framework/controls/RowStore.h"
#include "framework/files/FolderItem.h"
#include "framework/files/TextInputStream.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

enum class FileReader;
struct ReaderRule;

/// The state of a search of folders or dropped items, and the readers of its files. Window1 derives from it.
/// This class cannot reach a control: the worker runs its readers, and the worker must not touch one.
///
/// Its life: a handler empties the arrays, lists files and folders in them, has the files read one by one,
/// and flushes resultArray into the list. Most fields keep their last values until the next run.
class SearchRun {
public:
    std::int64_t nextOne = 0; // see progressValue(); nothing reads it
    std::string myProgressText; // what Timer1 copies to ProgressText
    std::vector<std::string> itemArrayZ; // native paths of the files that the worker reads
    std::vector<std::string> subFolderArrayZ; // native paths of the folders in the searched one
    std::string searchText; // the text of a PDF page that is not scanned yet
    std::string searchText2; // the PDF page loaded last
    StagedRows resultArray; // addresses found that are not yet rows
    bool stopSwitch = false; // the user asked to stop
    Ref<FolderItem> myFile; // the current dropped item; kept after the drop
    std::int64_t counter = 0; // the index in itemArrayZ of the current file
    std::string currentFile; // its path, or, once doTextThread reads it, its name
    std::int64_t rCounter = 0; // matches of the run, duplicates included
    RunAccount account; // what was read and what was not

    /// Reads a text file. One that can't be opened is passed over without a word.
    void doTextThread(const Ref<FolderItem>& f);
    /// Reads a delimited file from `opened`, a stream of `f`.
    void doCSVFolderThread(const Ref<FolderItem>& f, const Ref<TextInputStream>& opened);
    /// Reads a Word file; finds a sample address in one that can't be read, so that the user sees that there
    /// was one. Skips the lock file of a document that is open in another program.
    void doWordFolderThread(const Ref<FolderItem>& f);
    /// Stages and counts the addresses in searchText. If it is empty, stages and counts once more those of
    /// the text that any reader read last.
    void doPDFCheckThread();

protected:
    /// Forgets the text that doPDFCheckThread would scan.
    void forgetText();
    /// Notes that a folder's listing has met a file; `rules` say what reads it if it is listed to be read.
    void accountFor(const FolderItem& file, bool isListed, std::span<const ReaderRule> rules);
    /// Notes a file that is picked or dropped itself.
    void accountForSingle(const FolderItem& file, std::span<const FileReader> readers);
    /// Notes a folder of which not all children could be listed.
    void accountForFolder(const FolderItem& folder);
    /// Reads `f` with one of the readers above.
    void readStaged(FileReader reader, const Ref<FolderItem>& f);
    /// Sets the progress text and the numbers for the file `f`, the element `i` of itemArrayZ.
    void tellItem(std::size_t i, const FolderItem& f);

private:
    class Staging;
    void stageText(std::string_view text);
    void stageStream(TextInputStream& stream);

    // What doPDFCheckThread would find in the text that was scanned last.
    RowStore m_lastMatches;
    std::int64_t m_lastMatchCount = 0;
};

/// Calls `take` with the rest of a stream in pieces, each of which may be scanned on its own. In pieces,
/// because to page in memory for a whole file takes longer than to scan it. Throws what the stream and `take`
/// throw, and OutOfMemoryException for a word that does not end.
void readInPieces(TextInputStream& stream, const std::function<void(std::string_view)>& take);

} // namespace quilvane
