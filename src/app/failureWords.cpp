// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/failureWords.h"

#include "app/Window1.h"
#include "framework/strings.h"

#include <array>

namespace quilvane {

namespace {

struct Words {
    const char* handler; // what its name begins with
    const char* text;
    bool stages = false; // its finds wait in the staged rows
};

constexpr std::array handlers{
    Words{ "importBtn1_Action", "The search of this file has ended here." },
    Words{ "importFolderBtn_Action", "The search of the folder has ended here.", true },
    Words{ "PushButton1_Action", "The search of the folder has ended here.", true },
    Words{ "Canvas1_DropObject", "The search of what you dropped has ended here.", true },
    Words{ "Thread1_Run",
        "The files that follow it in this folder are not read. The search of the folders below goes on." },
    Words{ "importBtn_Action", "The search of the web page has ended here. The list is as it was." },
    Words{ "exportBtn_Action", "The export has ended here. The list is as it was." },
    Words{ "exportTabDelimited_Action", "The export has ended here. The list is as it was." },
    Words{ "keepBtn_Action", "The list is as it was." },
    Words{ "removeBtn_Action",
        "Rows that were removed before the failure are gone. The others are as they were." },
    Words{ "searchBtn_Action", "The search of the list has ended here. The list is as it was." },
    Words{ "searchField_KeyDown", "The search of the list has ended here. The list is as it was." },
    // The application's and the windows'.
    Words{ "Event_Open", "Quilvane goes on without its preferences file." },
    Words{ "Event_Close", "Quilvane goes on without its preferences file." },
};

/// Empty where nothing was staged.
std::string keptFinds()
{
    if (!isOpen<Window1>())
        return {};
    const bool anyStaged = !implicit<Window1>().resultArray.empty();
    const std::size_t kept = implicit<Window1>().keepStagedFinds(); // also updates the buttons
    if (!anyStaged)
        return {};
    if (kept == 0)
        return " All that it had found was in the list already.";
    return " What it had found is in the list: " + Str(kept)
        + (kept == 1 ? " new address." : " new addresses.");
}

} // namespace

std::string failureWords(const std::string& handlerName)
{
    for (const Words& words : handlers) {
        if (handlerName.starts_with(words.handler))
            return words.text + (words.stages ? keptFinds() : std::string());
    }
    return "What was being done has ended here.";
}

} // namespace quilvane
