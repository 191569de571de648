// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Search File: one file from the open dialog; text and delimited files are read here.

#include "app/Window1.h"

#include "framework/Application.h"
#include "framework/dialogs/dialogs.h"
#include "readers/fileKind.h"

namespace quilvane {

namespace {

// What fileKind tells from a name, wherever it stands there; .doc as in .docx.
constexpr std::string_view marks[] = { ".csv", ".txt", ".doc", ".pdf" };
constexpr OfferedFiles offered{ "Text, CSV, Word and PDF files", marks };

} // namespace

void Window1::importBtn1_Action()
{
    resultArray.clear();
    itemArrayZ.clear();
    searchStop.setValue(false);
    ProgressText.setText("");
    doCSV();
    // Behind a cancelled dialog and a file of no known kind as well.
    flushResultArray();
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
    switch (fileKind(f->Name())) {
    case FileKind::PDF:
        doPDF(f);
        return;
    case FileKind::Word:
        doWord(f);
        return;
    case FileKind::Delimited:
        doCSVFile(f);
        return;
    case FileKind::Text: {
        const Ref<TextInputStream> stream = f->OpenAsTextFile();
        scanToList(*stream, Counting::On);
        enableButtonsBehindScan();
        stream->Close();
        break;
    }
    case FileKind::Other:
        // Not even opened; it ends like a text file in which there are no addresses.
        break;
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
    enableButtonsBehindScan();
    results.setVisible(true);
    // That nothing was found stands where the total would stand, unlike behind a text file.
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
    enableButtonsBehindScan();
    // Ahead of the removal, so this total counts the duplicates, too.
    setTotalLabel();
    stream->Close();
    checkDuplicates();
}

} // namespace quilvane
