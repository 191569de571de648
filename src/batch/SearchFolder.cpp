// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Search Folder, and its second handler.

#include "app/Window1.h"

#include "batch/readerRules.h"
#include "batch/runRules.h"
#include "framework/Application.h"
#include "framework/dialogs/dialogs.h"

namespace quilvane {

void Window1::importFolderBtn_Action()
{
    searchStop.setValue(false);
    clearFinishLine();
    account.clear();
    searchStop.setEnabled(true); // and never off again
    itemArrayZ.clear();
    resultArray.clear();
    subFolderArrayZ.clear();
    // rCounter is not reset: the count goes on from the run before.
    Ref<FolderItem> current;
    if (const Ref<FolderItem> folder = SelectFolder("Search Folder")) {
        if (folder->Directory() && !classifyChildren(*folder, searchFolderRules, current))
            return;
        startWorker();
    }
    // After a cancelled dialog as well.
    walkSubfolders(searchFolderRules, current);
    moveStagedRowsToList();
    checkDuplicates();
    setFinishMessage(ProgressText);
    setTotalLabel();
    Thread1.Kill();
    endRun();
}

void Window1::PushButton1_Action()
{
    Ref<FolderItem> current;
    if (const Ref<FolderItem> folder = SelectFolder("Search Folder")) {
        if (folder->Directory() && !classifyChildren(*folder, secondEntryRules, current))
            return;
        startWorker();
    }
    walkSubfolders(secondEntryRules, current);
    flushStagedRows();
    Thread1.Kill();
    checkDuplicates();
    setTotalLabel();
    // No finish message, and ProgressText stays hidden after a walk.
    clearFinishLine();
    Timer1.setEnabled(false);
}

bool Window1::classifyChildren(const FolderItem& folder, const RunRules& rules, Ref<FolderItem>& current)
{
    for (int i = 1; i <= folder.Count(); ++i) {
        current = folder.Item(i);
        if ((rules.walksEveryFolder || subFolderSearch.Value()) && current->Directory()
            && (rules.walksEveryFolder || !current->Alias()))
            subFolderArrayZ.push_back(current->NativePath());
        if (!current)
            return false;
        // A folder's name is matched, too: a folder old.txt is listed, but can't be read.
        const std::string name = current->Name();
        const bool isLeftOut = rules.leftOut && nameHas(rules.leftOut, name);
        const std::size_t listedBefore = itemArrayZ.size();
        for (const char* pattern : rules.listedNames) {
            if (!isLeftOut && nameHas(pattern, name))
                itemArrayZ.push_back(current->NativePath());
        }
        if (!current->Directory())
            accountFor(*current, itemArrayZ.size() > listedBefore, workerReaders);
    }
    accountForFolder(folder);
    return true;
}

void Window1::startWorker()
{
    ProgressText.setVisible(true);
    Timer1.setEnabled(true);
    Thread1.Run();
}

void Window1::endRun()
{
    ProgressText.setVisible(true);
    myProgressText = "Finished searching."; // not seen: the timer that would show it stops here
    Timer1.setEnabled(false);
    resultArray.clear();
    EnableMenuItems();
}

} // namespace quilvane
