// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The worker's body, and a form of it for a handler.

#include "app/Window1.h"

#include "batch/FilesToRead.h"
#include "batch/readerRules.h"
#include "batch/runRules.h"
#include "framework/Application.h"

namespace quilvane {

void Window1::Thread1_Run()
{
    // The last extension counts, not the whole name: notes.txt.bak was listed and is not read.
    FilesToRead files(itemArrayZ, workerReaders);
    for (std::size_t i = 0; i < itemArrayZ.size(); ++i) {
        currentFile = itemArrayZ[i];
        if (stopSwitch)
            Thread1.Kill(); // ends this body, so it does not return
        const FilesToRead::File file = files.next();
        tellItem(i, *file.item);
        for (const FileReader reader : file.readers)
            readStaged(reader, file.item);
    }
}

void Window1::noThread()
{
    for (std::size_t i = 0; i < itemArrayZ.size(); ++i) {
        currentFile = itemArrayZ[i];
        if (stopSwitch) {
            Thread1.Kill();
            break;
        }
        const Ref<FolderItem> f = GetFolderItem(itemArrayZ[i]);
        tellItem(i, *f);
        Application::DoEvents(eventLoopMilliseconds);
        for (const FileReader reader : readersFor(noThreadReaders, lastExtension(f->Name()))) {
            readStaged(reader, f);
            Application::DoEvents(eventLoopMilliseconds);
        }
    }
    Application::DoEvents(eventLoopMilliseconds);
    myProgressText = "Searching subfolders.";
}

} // namespace quilvane
