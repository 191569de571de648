// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Files and folders dropped on the main window.

#include "app/Window1.h"

#include "batch/runRules.h"

namespace quilvane {

void Window1::Canvas1_Open()
{
    // PDF files and folders have no such line and come all the same: any of these opens the area to
    // everything.
    Canvas1.AcceptFileDrop("application/vnd.ms-excel");
    Canvas1.AcceptFileDrop("text/plain");
    Canvas1.AcceptFileDrop("application/msword");
}

void Window1::Canvas1_DropObject(DragItem& obj)
{
    ProgressText.setText("");
    searchStop.setValue(false);
    searchStop.setEnabled(true);
    resultArray.clear();
    subFolderArrayZ.clear();
    itemArrayZ.clear();
    myProgressText.clear();
    nextOne = 0;
    setSearchText({});
    rCounter = 0;
    if (obj.FolderItemAvailable()) {
        // Nothing is emptied between the items: a later folder's run reads the files of the earlier ones
        // again, and the removal of duplicates makes up for it.
        Ref<FolderItem> current;
        do {
            if (obj.FolderItemAvailable())
                myFile = obj.FolderItem(); // else the item before comes once more
            if (myFile && myFile->Directory()) {
                if (!classifyChildren(*myFile, droppedFolderRules, current))
                    return;
                startWorker();
            } else if (myFile) {
                doCSVDrop(myFile);
            }
            walkSubfolders(droppedFolderRules, current);
            flushResultArray();
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
    const std::string name = f->Name();
    // Of these patterns the dots are wildcards: mytxt.rtf is read as text.
    if (nameHas(".csv", name)) {
        doCSVFile(f);
        return;
    }
    if (nameHas(".pdf", name)) {
        doPDF(f);
        return;
    }
    if (nameHas(".doc", name))
        doWord(f); // and goes on: a name that hits both is read both ways
    if (!nameHas(".txt", name))
        return;
    const Ref<TextInputStream> stream = f->OpenAsTextFile();
    scanToList(*stream, Counting::On);
    enableButtonsBehindScan();
    setFinishMessage(ProgressText);
    stream->Close();
    checkDuplicates();
    setTotalLabel();
}

} // namespace quilvane
