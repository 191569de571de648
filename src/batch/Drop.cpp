// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Files and folders dropped on the main window.

#include "app/Window1.h"

#include "batch/readerRules.h"
#include "batch/runRules.h"

namespace quilvane {

void Window1::Canvas1_Open()
{
    // PDF files and folders need no line here: with any of these types the area accepts every file and
    // folder.
    Canvas1.AcceptFileDrop("application/vnd.ms-excel");
    Canvas1.AcceptFileDrop("text/plain");
    Canvas1.AcceptFileDrop("application/msword");
}

void Window1::Canvas1_DropObject(DragItem& obj)
{
    clearFinishLine();
    account.clear();
    searchStop.setValue(false);
    searchStop.setEnabled(true);
    resultArray.clear();
    subFolderArrayZ.clear();
    itemArrayZ.clear();
    myProgressText.clear();
    nextOne = 0;
    forgetText();
    rCounter = 0;
    if (obj.FolderItemAvailable()) {
        // The arrays are not emptied between the items: the run of a later folder reads the files of the
        // earlier ones again. The removal of duplicates removes what is found twice.
        Ref<FolderItem> current;
        do {
            if (obj.FolderItemAvailable())
                myFile = obj.FolderItem(); // else the previous item is used again
            if (myFile && myFile->Directory()) {
                if (!classifyChildren(*myFile, droppedFolderRules, current))
                    return;
                startWorker();
            } else if (myFile) {
                doCSVDrop(myFile);
            }
            walkSubfolders(droppedFolderRules, current);
            flushStagedRows();
            Thread1.Kill();
            checkDuplicates();
            setFinishMessage(ProgressText);
            setTotalLabel();
        } while (obj.NextItem());
    }
    Thread1.Kill();
    endRun();
}

void Window1::doCSVDrop(const Ref<FolderItem>& f)
{
    Timer1.setEnabled(true);
    rCounter = 0;
    const std::vector<FileReader> readers = readersFor(droppedFileReaders, f->Name());
    accountForSingle(*f, readers);
    for (const FileReader reader : readers) {
        switch (reader) {
        case FileReader::Delimited:
            doCSVFile(f);
            break;
        case FileReader::PDF:
            doPDF(f);
            break;
        case FileReader::Word:
            doWord(f);
            break;
        case FileReader::Text:
            const Ref<TextInputStream> stream = f->OpenAsTextFile();
            scanToList(*stream, Counting::On);
            account.read(f->NativePath(), reader);
            enableButtonsAfterScan();
            setFinishMessage(ProgressText);
            stream->Close();
            checkDuplicates();
            setTotalLabel();
            break;
        }
    }
}

} // namespace quilvane
