// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the folders below the searched one: in the handler itself, which runs the event loop before each
// file.

#include "app/Window1.h"

#include "batch/FilesToRead.h"
#include "batch/readerRules.h"
#include "batch/runRules.h"
#include "framework/Application.h"
#include "framework/dialogs/dialogs.h"
#include "framework/files/ReadAhead.h"
#include "framework/strings.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <set>

namespace quilvane {

/// The chain of folders from the one where the walk began down to the current one. A link may lead to one of
/// them; it is not entered again.
struct Window1::WalkedFolder {
    FolderItem::Identity identity;
    const WalkedFolder* above;

    bool has(const FolderItem::Identity& wanted) const
    {
        return identity == wanted || (above && above->has(wanted));
    }
};

/// What was found under a folder.
struct Window1::WalkResult {
    bool anyFile = false;
    /// Folders above it to which links lead. Those links were not followed. So "no file was listed" is known
    /// only for a walk that is inside of these folders.
    std::set<FolderItem::Identity> notEntered;
};

/// The folders under which no file was listed. Many links may lead to one; it is not entered again. That
/// changes no count, and without it a folder full of links could be walked for ever.
class Window1::EmptyFolders {
public:
    /// Null if the folder must be entered.
    const WalkResult* find(const FolderItem::Identity& folder, const WalkedFolder* above) const
    {
        const auto known = m_known.find(folder);
        if (known == m_known.end())
            return nullptr;
        const auto& notEntered = known->second.notEntered;
        const bool holds = std::all_of(notEntered.begin(), notEntered.end(),
            [above](const FolderItem::Identity& each) { return above && above->has(each); });
        return holds ? &known->second : nullptr;
    }

    void add(const FolderItem::Identity& folder, const WalkResult& result) { m_known[folder] = result; }

private:
    std::map<FolderItem::Identity, WalkResult> m_known;
};

namespace {

const std::vector<std::string> usualExtensions{ ".txt", ".csv", ".docx" }; // of the files that are read

/// Lets the disk fetch the folder after the current one.
void fetchAfter(std::size_t i, const std::vector<std::string>& folders)
{
    if (i + 1 < folders.size())
        fetchAhead(folders[i + 1], usualExtensions);
}

} // namespace

void Window1::walkSubfolders(const RunRules& rules, Ref<FolderItem>& current)
{
    for (std::size_t i = 0; i < subFolderArrayZ.size(); ++i) {
        if (stopSwitch) {
            Thread1.Kill();
            MsgBox("Search was stopped.");
            searchStop.setValue(false);
            flushStagedRows();
            break;
        }
        // The name is that of the previous item: at first, of the last child that was listed, which need not
        // be a folder.
        myProgressText
            = searchingText(i + std::size_t(rules.firstNumber), subFolderArrayZ.size(), current->Name());
        nextOne = progressValue(i, subFolderArrayZ.size());
        fetchAfter(i, subFolderArrayZ);
        current = GetFolderItem(subFolderArrayZ[i]);
        if (!rules.asksAgain || subFolderSearch.Value())
            doSubfolder(current);
    }
}

void Window1::doSubfolder(const Ref<FolderItem>& folder)
{
    EmptyFolders emptyFolders;
    m_lastEvents = std::chrono::steady_clock::now();
    walkFolder(folder, nullptr, emptyFolders);
}

Window1::WalkResult Window1::walkFolder(
    const Ref<FolderItem>& folder, const WalkedFolder* above, EmptyFolders& emptyFolders)
{
    const WalkedFolder here{ folder ? folder->identity() : FolderItem::Identity{}, above };
    const bool isBelowItself = above && above->has(here.identity);
    const WalkResult* known = emptyFolders.find(here.identity, above);
    const bool isFolder = folder && folder->Directory();
    const bool isEntered = isFolder && !isBelowItself && !known;
    std::vector<std::string> files;
    std::vector<std::string> subfolders;
    if (isEntered)
        listFolder(*folder, files, subfolders);
    else if (folder && !isFolder) // since its path is too long, or leads through a forbidden folder
        accountForFolder(*folder);
    // The event loop runs before each file. Where no file comes for long, it runs here.
    constexpr std::chrono::milliseconds longWait(100);
    if (files.empty() && std::chrono::steady_clock::now() - m_lastEvents > longWait)
        letEventsIn();
    if (!subfolders.empty())
        fetchAhead(subfolders.front(), usualExtensions);
    if (folder) {
        ProgressText.setVisible(true);
        readFiles(files);
        ProgressText.setVisible(false);
    }
    WalkResult result{ .anyFile = !files.empty(), .notEntered = {} };
    for (std::size_t i = 0; i < subfolders.size(); ++i) {
        // Both numbers are one too small, on purpose.
        myProgressText = "Checking folder " + Str(i) + " of " + Str(subfolders.size() - 1) + ".";
        fetchAfter(i, subfolders);
        const WalkResult below = walkFolder(GetFolderItem(subfolders[i]), &here, emptyFolders);
        result.anyFile |= below.anyFile;
        result.notEntered.insert(below.notEntered.begin(), below.notEntered.end());
    }
    myProgressText = "Finished searching subfolders.";

    if (isBelowItself)
        return { .anyFile = false, .notEntered = { here.identity } };
    if (known)
        return *known;
    result.notEntered.erase(here.identity);
    if (isEntered && !result.anyFile)
        emptyFolders.add(here.identity, result);
    return result;
}

void Window1::listFolder(
    const FolderItem& folder, std::vector<std::string>& files, std::vector<std::string>& subfolders)
{
    for (int i = 1; i <= folder.Count(); ++i) {
        const Ref<FolderItem> child = folder.Item(i);
        if (child->Directory()) // links to folders as well, unlike in the folder that was chosen
            subfolders.push_back(child->NativePath());
        const std::string name = child->Name();
        const std::size_t listedBefore = files.size();
        for (const char* pattern : { ".txt", ".csv", ".docx" }) { // old .doc files are not read down here
            if (nameHas(pattern, name))
                files.push_back(child->NativePath());
        }
        if (!child->Directory())
            accountFor(*child, files.size() > listedBefore, walkReaders);
    }
    accountForFolder(folder);
}

void Window1::readFiles(const std::vector<std::string>& paths)
{
    FilesToRead files(paths, walkReaders);
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const FilesToRead::File f = files.next();
        myProgressText = searchingText(i + 1, paths.size(), f.item->Name());
        nextOne = progressValue(i, paths.size());
        letEventsIn();
        if (!f.item) {
            // Never reached: for a file that is gone, f.item->Name() has thrown already.
            MsgBox("No file was opened.");
            clearFinishLine();
            return;
        }
        for (const FileReader reader : f.readers) {
            readStaged(reader, f.item);
            if (reader == FileReader::Word)
                letEventsIn();
        }
    }
}

void Window1::letEventsIn()
{
    Application::DoEvents(eventLoopMilliseconds);
    m_lastEvents = std::chrono::steady_clock::now();
}

} // namespace quilvane
