// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Window1.h"

#include "framework/files/BinaryStream.h"
#include "framework/text/strings.h"
#include "framework/word/WordFileMBS.h"

namespace quilvane {

void Window1::doWord(const Ref<FolderItem>& f)
{
    rCounter = 0;
    const Ref<FolderItem> file = GetFolderItem(f->NativePath());
    const Ref<BinaryStream> stream = BinaryStream::Open(*file);
    // Nil for what is no Word document, lock files of an open one included; the report then says why.
    const Ref<WordFileMBS> document = WordFileMBS::OpenData(stream->Read(stream->Length()));
    TextField1.setText(document->Text());
    addMatchesToList(TextField1.Text(), Counting::On);
    enableButtonsBehindScan();
    setFinishMessage(ProgressText);
    stream->Close();
    checkDuplicates();
    setTotalLabel();
}

void Window1::doWordFolder(const Ref<FolderItem>& f)
{
    const Ref<FolderItem> file = GetFolderItem(f->NativePath());
    const Ref<BinaryStream> stream = BinaryStream::Open(*file);
    const Ref<WordFileMBS> document = WordFileMBS::OpenData(stream->Read(stream->Length()));
    TextField1.setText(document->Text());
    addMatchesToList(TextField1.Text(), Counting::Off);
    enableButtonsBehindScan();
    // Told by the rows, ahead of the removal, and in words of its own.
    const std::size_t rows = Listbox1.ListCount();
    results.setText(rows > 0 ? Str(std::int64_t(rows)) + " Entries" : "No email addresses detected.");
    results.setVisible(true);
    filterBtn.setEnabled(rows > 0);
    clearBtn.setEnabled(rows > 0);
    stream->Close();
    checkDuplicates();
    setTotalLabel();
}

} // namespace quilvane
