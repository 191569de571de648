// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "batch/SearchRun.h"
#include "framework/controls/Canvas.h"
#include "framework/controls/CheckBox.h"
#include "framework/controls/HTMLViewer.h"
#include "framework/controls/Label.h"
#include "framework/controls/Listbox.h"
#include "framework/controls/PushButton.h"
#include "framework/controls/Slider.h"
#include "framework/controls/TextArea.h"
#include "framework/controls/TextField.h"
#include "framework/controls/Window.h"
#include "framework/files/FolderItem.h"
#include "framework/files/TextInputStream.h"
#include "framework/threads/Thread.h"
#include "framework/threads/Timer.h"
#include "scan/DuplicateIndex.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace quilvane {

class MyDynaPDFMBS;
struct RunRules;

/// The main window: the list of addresses, the buttons of every source, the drop area, the two labels that
/// report what happened, and some invisible controls that the readers use internally.
///
/// One class, grouped by concern; each room defines the methods that belong to it. The rows of Listbox1 are
/// the program's data: other windows read and write them here, and they are gone when the window closes.
class Window1 : public Window, public SearchRun {
public:
    // The controls, in the order of their creation.
    Listbox Listbox1{ *this, "Listbox1" };
    PushButton importBtn{ *this, "importBtn" };
    PushButton clearBtn{ *this, "clearBtn" };
    Label results{ *this, "results" };
    PushButton filterBtn{ *this, "filterBtn" };
    PushButton searchBtn{ *this, "searchBtn" };
    PushButton exportBtn{ *this, "exportBtn" };
    HTMLViewer HTMLViewer1{ *this, "HTMLViewer1" };
    TextField urlField{ *this, "urlField" };
    Canvas Canvas1{ *this, "Canvas1" };
    Label Label1{ *this, "Label1" };
    PushButton importBtn1{ *this, "importBtn1" };
    PushButton importFolderBtn{ *this, "importFolderBtn" };
    Label ProgressText{ *this, "ProgressText" };
    TextArea TextArea1{ *this, "TextArea1" };
    Slider Slider1{ *this, "Slider1" };
    TextField TextField1{ *this, "TextField1" };
    Timer Timer1{ "Timer1", 5 };
    CheckBox subFolderSearch{ *this, "subFolderSearch" };
    PushButton PushButton1{ *this, "PushButton1" };
    Thread Thread1{ "Thread1" };
    CheckBox searchStop{ *this, "searchStop" };
    PushButton exportTabDelimited{ *this, "exportTabDelimited" };

    Ref<MyDynaPDFMBS> pdf; // the engine of the last PDF document

    // readers
    void importBtn1_Action();
    void doCSV();
    void doCSVFile(const Ref<FolderItem>& f);
    /// Not called: doCSVFolderThread does this work for the worker. Kept because it ends a run in its own
    /// way.
    void doCSVFolder(const Ref<FolderItem>& f);
    void doPDF(const Ref<FolderItem>& f);
    /// Copies the text of a page (numbered from 1) of the open document into searchText2, and empties
    /// searchText.
    void Load(int pageNumber);
    void Slider1_ValueChanged();
    void doWord(const Ref<FolderItem>& f);
    void importBtn_Action();
    /// Searches the page that urlField names, and empties the field. If the page can't be loaded, the field
    /// keeps its text.
    void doHTML();
    void urlField_TextChange();
    bool urlField_KeyDown(const std::string& key);
    void HTMLViewer1_DocumentComplete(const std::string& url);
    void HTMLViewer1_DocumentProgressChanged(const std::string& url, int percentage);
    /// Not called, like doCSVFolder.
    void doWordFolder(const Ref<FolderItem>& f);
    /// Not called. Does for the text in TextField1 what doPDFCheckThread does, and ends the run in its own
    /// way.
    void doPDFCheck();

    // batch
    void importFolderBtn_Action();
    /// A second handler of Search Folder; its button is outside of the window.
    void PushButton1_Action();
    void Canvas1_Open();
    void Canvas1_DropObject(DragItem& obj);
    void doCSVDrop(const Ref<FolderItem>& f);
    /// Reads the files of a folder, then those of the folders below it.
    void doSubfolder(const Ref<FolderItem>& folder);
    void Thread1_Run();
    /// Not called. The worker's loop, for a handler to run instead of the worker.
    void noThread();

    // the list, and the end of a run
    void Listbox1_Change();
    void clearBtn_Action();
    /// Removes the rows that look like names of pictures. Of rows that are equal or differ only in case, the
    /// first stays.
    void checkDuplicates();
    /// Checks whether anything but checkDuplicates() has removed or moved rows since the last call. If so, it
    /// forgets the index of the rows: the next checkDuplicates() looks at the whole list, and the next flush
    /// adds all staged rows again.
    void noteRemovedRows();

    /// Puts what a failed search of folders or dropped items has staged into the list, and brings buttons and
    /// menus up to date. Returns how many rows that added. For the report of the failure.
    std::size_t keepStagedFinds();
    /// Empties ProgressText and its help text.
    void clearFinishLine();

    /// Adds to the list the staged addresses that this run has not added yet. They stay staged.
    void flushStagedRows();

    // export
    void exportBtn_Action();
    void exportTabDelimited_Action();

    // the window's own
    void filterBtn_Action();
    void searchBtn_Action();
    void searchStop_Action();
    void Timer1_Action();

private:
    /// Whether a scan adds the number of its matches to rCounter.
    enum class Counting { Off, On };

    void Layout() override;
    void bindEvents();
    void Event_Open() override;
    void Event_Close() override;

    /// Adds the addresses in the rest of `stream` to the list. If it can't be read to its end, adds and
    /// counts none.
    void scanToList(TextInputStream& stream, Counting counting);
    void addMatchesToList(std::string_view text, Counting counting);
    using TextScan = std::function<void(std::string_view text)>;
    /// The common part of both. `giveText` calls its argument with the text, in one piece or several.
    void scanAllToList(const std::function<void(const TextScan& scan)>& giveText, Counting counting);
    /// Adds all staged addresses to the list at the end of a run, where nothing needs to stay staged.
    void moveStagedRowsToList();

    /// Lists the files and folders in `folder`. `current` is the last child looked at. False if one vanished
    /// meanwhile, which ends the handler.
    bool classifyChildren(const FolderItem& folder, const RunRules& rules, Ref<FolderItem>& current);
    void startWorker();
    /// The folders in subFolderArrayZ one by one, until the user stops the run.
    void walkSubfolders(const RunRules& rules, Ref<FolderItem>& current);
    struct WalkedFolder;
    class EmptyFolders;
    struct WalkResult;
    WalkResult walkFolder(
        const Ref<FolderItem>& folder, const WalkedFolder* above, EmptyFolders& emptyFolders);
    void listFolder(
        const FolderItem& folder, std::vector<std::string>& files, std::vector<std::string>& subfolders);
    void readFiles(const std::vector<std::string>& paths);
    /// Lets the event loop run for a short time.
    void letEventsIn();
    void endRun();

    void enableButtonsAfterScan();
    /// At the end of a run, with the account of its files.
    void setFinishMessage(Label& label);
    void showFinishMessage(Label& label);
    /// On an empty list the label keeps its old text.
    void setTotalLabel();

    std::chrono::steady_clock::time_point m_lastEvents; // when a walk began or letEventsIn() returned last
    DuplicateIndex m_knownRows; // those that checkDuplicates() has looked at
    std::uint64_t m_arrangement = 0; // Listbox1.Arrangement() when m_knownRows was last true
};

} // namespace quilvane
