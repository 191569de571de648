// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Search File: one file from the open dialog; text and delimited files are read here.

#include "app/Window1.h"

#include "batch/readerRules.h"
#include "framework/Application.h"
#include "framework/dialogs/dialogs.h"
#include "framework/files/displayName.h"

namespace quilvane {

namespace {

// The parts of names that searchFileReaders knows; .doc also stands for .docx.
constexpr std::string_view marks[] = { ".csv", ".txt", ".doc", ".pdf" };
constexpr OfferedFiles offered{ "Text, CSV, Word and PDF files", marks };

} // namespace

void Window1::importBtn1_Action()
{
    resultArray.clear();
    itemArrayZ.clear();
    searchStop.setValue(false);
    clearFinishLine();
    account.clear();
    doCSV();
    // After a cancelled dialog and a file of no known kind as well.
    moveStagedRowsToList();
    checkDuplicates();
    setTotalLabel();
    Thread1.Kill();
    Timer1.setEnabled(false);
    resultArray.clear();
    EnableMenuItems();
}

void Window1::doCSV()
{
    rCounter = 0;
    Timer1.setEnabled(true);
    const Ref<FolderItem> f = GetOpenFolderItem("text/csv;text/pdf;text/docx", "Search File", offered);
    if (!f)
        return;
    // A file of an unknown kind is not even opened; the run ends as after a text file without addresses.
    const std::vector<FileReader> readers = readersFor(searchFileReaders, f->Name());
    accountForSingle(*f, readers);
    for (const FileReader reader : readers) {
        switch (reader) {
        case FileReader::PDF:
            doPDF(f);
            return;
        case FileReader::Word:
            doWord(f);
            return;
        case FileReader::Delimited:
            doCSVFile(f);
            return;
        case FileReader::Text:
            const Ref<TextInputStream> stream = f->OpenAsTextFile();
            scanToList(*stream, Counting::On);
            account.read(f->NativePath(), reader);
            enableButtonsAfterScan();
            stream->Close();
            break;
        }
    }
    checkDuplicates();
    setFinishMessage(ProgressText);
    setTotalLabel();
}

void Window1::doCSVFile(const Ref<FolderItem>& f)
{
    Timer1.setEnabled(true);
    rCounter = 0;
    const Ref<TextInputStream> stream = f->OpenAsTextFile();
    scanToList(*stream, Counting::On);
    enableButtonsAfterScan();
    results.setVisible(true);
    account.read(f->NativePath(), FileReader::Delimited);
    // If nothing was found, the message is shown in place of the total, unlike after a text file.
    setFinishMessage(rCounter > 0 ? ProgressText : results);
    stream->Close();
    checkDuplicates();
    setTotalLabel();
}

void Window1::doCSVFolder(const Ref<FolderItem>& f)
{
    Timer1.setEnabled(true);
    const Ref<FolderItem> file = GetFolderItem(f->NativePath());
    if (!file)
        return;
    const Ref<TextInputStream> stream = file->OpenAsTextFile();
    scanToList(*stream, Counting::Off);
    if (!stream) {
        // Never reached: to read from a nil stream has thrown already.
        MsgBox("Could not open " + displayPath(f->Name()) + ".");
        return;
    }
    enableButtonsAfterScan();
    // Before the removal of duplicates, so this total counts them, too.
    setTotalLabel();
    stream->Close();
    checkDuplicates();
}

} // namespace quilvane
