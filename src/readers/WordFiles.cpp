// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Window1.h"

#include "batch/readerRules.h"
#include "framework/documents/WordFileMBS.h"
#include "framework/files/BinaryStream.h"
#include "framework/files/displayName.h"
#include "framework/strings.h"

namespace quilvane {

namespace {

/// Nil, with the file's name and the reason, for a file that is no Word document, such as a lock file.
Ref<WordFileMBS> openDocument(const FolderItem& file, BinaryStream& stream)
{
    Ref<WordFileMBS> document = WordFileMBS::OpenData(stream.Read(stream.Length()));
    if (!document)
        return Ref<WordFileMBS>::nil(
            "The file \"" + displayPath(file.NativePath()) + "\" could not be read. " + document.whyNil());
    return document;
}

} // namespace

void Window1::doWord(const Ref<FolderItem>& f)
{
    rCounter = 0;
    const Ref<FolderItem> file = GetFolderItem(f->NativePath());
    const Ref<BinaryStream> stream = BinaryStream::Open(*file);
    const Ref<WordFileMBS> document = openDocument(*file, *stream);
    TextField1.setText(document->Text());
    addMatchesToList(TextField1.Text(), Counting::On);
    account.read(f->NativePath(), FileReader::Word);
    enableButtonsAfterScan();
    setFinishMessage(ProgressText);
    stream->Close();
    checkDuplicates();
    setTotalLabel();
}

void Window1::doWordFolder(const Ref<FolderItem>& f)
{
    const Ref<FolderItem> file = GetFolderItem(f->NativePath());
    const Ref<BinaryStream> stream = BinaryStream::Open(*file);
    const Ref<WordFileMBS> document = openDocument(*file, *stream);
    TextField1.setText(document->Text());
    addMatchesToList(TextField1.Text(), Counting::Off);
    enableButtonsAfterScan();
    // In words of its own: the number of rows before the removal of duplicates.
    const std::size_t rows = Listbox1.ListCount();
    results.setText(rows > 0 ? Str(rows) + " Entries" : "No email addresses detected.");
    if (rows > 0)
        results.setVisible(true);
    filterBtn.setEnabled(rows > 0);
    clearBtn.setEnabled(rows > 0);
    stream->Close();
    checkDuplicates();
    setTotalLabel();
}

} // namespace quilvane
