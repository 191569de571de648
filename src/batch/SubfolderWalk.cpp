// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The folders below a searched folder, read on the main stack while the event loop gets its turns.

#include "app/Window1.h"

#include "batch/runRules.h"
#include "framework/Application.h"
#include "framework/dialogs/dialogs.h"
#include "framework/files/ReadAhead.h"
#include "framework/text/strings.h"

namespace quilvane {

/// The folders from the searched one down to that in hand. A link may lead to one of them; it is not entered
/// again.
struct Window1::WalkedFolder {
    FolderItem::Identity identity;
    const WalkedFolder* above;

    bool isBelowItself() const
    {
        for (const WalkedFolder* each = above; each; each = each->above) {
            if (each->identity == identity)
                return true;
        }
        return false;
    }
};

void Window1::walkSubfolders(const RunRules& rules, Ref<FolderItem>& current)
{
    for (std::size_t i = 0; i < subFolderArrayZ.size(); ++i) {
        if (stopSwitch) {
            Thread1.Kill();
            MsgBox("Search was stopped.");
            searchStop.setValue(false);
            flushResultArray();
            break;
        }
        // The name is that of the item before: at first of the last child looked at, which need not be a
        // folder.
        myProgressText
            = searchingText(i + std::size_t(rules.firstNumber), subFolderArrayZ.size(), current->Name());
        nextOne = progressValue(i, subFolderArrayZ.size());
        current = GetFolderItem(subFolderArrayZ[i]);
        if (!rules.asksAgain || subFolderSearch.Value())
            doSubfolder(current);
        yieldToThreads();
    }
}

void Window1::doSubfolder(const Ref<FolderItem>& folder)
{
    walkFolder(folder, nullptr);
}

void Window1::walkFolder(const Ref<FolderItem>& folder, const WalkedFolder* above)
{
    std::vector<std::string> files;
    std::vector<std::string> subfolders;
    WalkedFolder here{ {}, above };
    if (folder) {
        here.identity = folder->identity();
        if (folder->Directory() && !here.isBelowItself())
            listFolder(*folder, files, subfolders);
        ProgressText.setVisible(true);
        readFiles(files);
        ProgressText.setVisible(false);
    }
    for (std::size_t i = 0; i < subfolders.size(); ++i) {
        // Both numbers are one short, on purpose.
        myProgressText = "Checking folder " + Str(i) + " of " + Str(subfolders.size() - 1) + ".";
        walkFolder(GetFolderItem(subfolders[i]), &here);
        yieldToThreads();
    }
    myProgressText = "Finished searching subfolders.";
}

void Window1::listFolder(
    const FolderItem& folder, std::vector<std::string>& files, std::vector<std::string>& subfolders)
{
    for (int i = 1; i <= folder.Count(); ++i) {
        const Ref<FolderItem> child = folder.Item(i);
        if (child->Directory()) // links to folders as well, unlike in the folder that was chosen
            subfolders.push_back(child->NativePath());
        const std::string name = child->Name();
        for (const char* pattern : { ".txt", ".csv", ".docx" }) { // old .doc files are not read down here
            if (nameHas(pattern, name))
                files.push_back(child->NativePath());
        }
        yieldToThreads();
    }
}

void Window1::readFiles(const std::vector<std::string>& files)
{
    ReadAhead ahead(files);
    for (std::size_t i = 0; i < files.size(); ++i) {
        const Ref<FolderItem> f = ahead.next();
        myProgressText = searchingText(i + 1, files.size(), f->Name());
        nextOne = progressValue(i, files.size());
        Application::DoEvents(eventLoopSpell);
        const std::string extension = lastExtension(f->Name());
        if (nameHas(".txt", extension))
            doTextThread(f);
        if (nameHas(".docx", extension)) {
            doWordFolderThread(f);
            Application::DoEvents(eventLoopSpell);
        } else if (nameHas(".csv", extension)) {
            doCSVFolderThread(f);
        }
        yieldToThreads();
    }
}

} // namespace quilvane
