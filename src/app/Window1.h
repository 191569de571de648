// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

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

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quilvane {

class MyDynaPDFMBS;
struct RunRules;

/// The main window: the list of addresses, the buttons of every source, the drop area, the two labels that
/// tell what happened, and some controls that nobody sees and that the sources use as working parts.
///
/// One class, grouped by concern; each room defines the methods that belong to it. The rows of Listbox1 are
/// the program's data: other windows read and write them here, and they are gone when the window closes.
class Window1 : public Window {
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

    // The state of a run. Thread1 and the handlers share it without a lock: they take turns only at yields.
    std::int64_t nextOne = 0; // how far the run is, in 65536ths and a little more; nobody looks at it
    std::string myProgressText; // what Timer1 copies to ProgressText, since Thread1 touches no control
    std::vector<std::string> itemArrayZ; // native paths of the files that Thread1 reads
    std::vector<std::string> subFolderArrayZ; // native paths of the folders in the searched one
    /// The text that a staged reader scans. What one has left stays here: see doPDFCheckThread.
    std::shared_ptr<const std::string> searchText = std::make_shared<const std::string>();
    std::string searchText2; // the PDF page loaded last
    std::vector<std::string> resultArray; // addresses found that are not yet rows
    bool stopSwitch = false; // the user asked to stop
    Ref<FolderItem> myFile; // the dropped item in hand; stays from drop to drop
    std::int64_t counter = 0; // the index in itemArrayZ of the file in hand
    std::string currentFile; // its path, or, once doTextThread reads it, its name
    std::int64_t rCounter = 0; // matches of the run, duplicates included

    // readers
    void importBtn1_Action();
    void doCSV();
    void doCSVFile(const Ref<FolderItem>& f);
    /// Nothing calls it; its counterpart for the worker does its work. Kept for its own end of a run.
    void doCSVFolder(const Ref<FolderItem>& f);
    void doPDF(const Ref<FolderItem>& f);
    /// Takes the text of a page, numbered from 1, of the document in hand into searchText2, and empties
    /// searchText.
    void Load(int pageNumber);
    void Slider1_ValueChanged();
    void doWord(const Ref<FolderItem>& f);
    void importBtn_Action();
    /// Searches the page that urlField names, and empties the field. A page that can't be loaded leaves it.
    void doHTML();
    void urlField_TextChange();
    void HTMLViewer1_DocumentComplete(const std::string& url);
    void HTMLViewer1_DocumentProgressChanged(const std::string& url, int percentage);
    /// Nothing calls it, like doCSVFolder.
    void doWordFolder(const Ref<FolderItem>& f);
    /// Stages the addresses of the text that stands in searchText, whoever has left it there; nothing if it
    /// is empty.
    void doPDFCheckThread();
    /// Another form of it that nothing calls, for the text in TextField1 and with an end of its own.
    void doPDFCheck();

    // batch
    void importFolderBtn_Action();
    /// The second entry of Search Folder, parked out of reach.
    void PushButton1_Action();
    void Canvas1_Open();
    void Canvas1_DropObject(DragItem& obj);
    void doCSVDrop(const Ref<FolderItem>& f);
    /// Reads the files of a folder, then those of the folders below it.
    void doSubfolder(const Ref<FolderItem>& folder);
    void Thread1_Run();
    /// The worker's loop for the main stack, which nothing calls.
    void noThread();
    void doTextThread(const Ref<FolderItem>& f);
    void doCSVFolderThread(const Ref<FolderItem>& f);
    void doWordFolderThread(const Ref<FolderItem>& f);

    // the list, and the end of a run
    void Listbox1_Change();
    void clearBtn_Action();
    /// Removes the rows that look like names of pictures, and of rows that differ in case at most all but the
    /// first.
    void checkDuplicates();

    // export
    void exportBtn_Action();
    void exportTabDelimited_Action();

    // the window's own
    void filterBtn_Action();
    void searchBtn_Action();
    void searchStop_Action();
    void Timer1_Action();

private:
    /// Whether a scan adds what it finds to rCounter.
    enum class Counting { Off, On };

    void Layout() override;
    void bindEvents();
    void Event_Open() override;
    void Event_Close() override;

    // Each scan loop gives other threads their turn behind every match.
    /// Adds the addresses of the rest of `stream` to the list. The file is read in pieces: whole in memory it
    /// would take longer to page in than to scan.
    void scanToList(TextInputStream& stream, Counting counting);
    void addMatchesToList(std::string_view text, Counting counting);
    /// Adds the staged addresses to the list and leaves them staged.
    void flushResultArray();

    /// Adds the addresses in searchText to resultArray and counts them.
    void stageMatches();
    void setSearchText(std::string text);

    /// Lists the files and folders in `folder`. `current` is the last child looked at. False if one vanished
    /// meanwhile, which ends the handler.
    bool classifyChildren(const FolderItem& folder, const RunRules& rules, Ref<FolderItem>& current);
    void startWorker();
    /// The path in itemArrayZ that the run has come to, with all that is told of it.
    Ref<FolderItem> takeItem(std::size_t i);
    /// The folders in subFolderArrayZ one by one, until the user stops the run.
    void walkSubfolders(const RunRules& rules, Ref<FolderItem>& current);
    struct WalkedFolder;
    void walkFolder(const Ref<FolderItem>& folder, const WalkedFolder* above);
    void listFolder(
        const FolderItem& folder, std::vector<std::string>& files, std::vector<std::string>& subfolders);
    void readFiles(const std::vector<std::string>& files);
    void endRun();

    DuplicateIndex m_duplicates; // of Listbox1
    std::uint64_t m_checkedArrangement = 0; // the one at which m_duplicates knows the rows

    void enableButtonsBehindScan();
    void setFinishMessage(Label& label);
    /// On an empty list the label keeps its old text.
    void setTotalLabel();
};

} // namespace quilvane
