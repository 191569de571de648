// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The worker: its body, and the readers that both it and the walk use. They touch no control.

#include "app/Window1.h"

#include "batch/runRules.h"
#include "framework/Application.h"
#include "framework/files/BinaryStream.h"
#include "framework/files/ReadAhead.h"
#include "framework/files/TextInputStream.h"
#include "framework/word/WordFileMBS.h"
#include "scan/AddressScanner.h"

namespace quilvane {

namespace {

/// What is found in a Word file that can't be read, once for each.
constexpr const char* sampleAddress = "sample@example.com";

} // namespace

void Window1::Thread1_Run()
{
    ReadAhead ahead(itemArrayZ);
    for (std::size_t i = 0; i < itemArrayZ.size(); ++i) {
        if (stopSwitch) {
            Thread1.Kill();
            break;
        }
        const Ref<FolderItem> f = takeItem(i, ahead.next());
        // The last extension counts, not the whole name: notes.txt.bak was listed and is not read.
        const std::string extension = lastExtension(f->Name());
        if (nameHas("\\.doc", extension))
            doWordFolderThread(f);
        else if (nameHas("\\.pdf", extension))
            doPDFCheckThread(); // reads no file: it finds what the file before has left once more
        else if (nameHas("\\.txt", extension))
            doTextThread(f);
        else if (nameHas("\\.csv", extension))
            doCSVFolderThread(f);
        yieldToThreads();
    }
}

void Window1::noThread()
{
    for (std::size_t i = 0; i < itemArrayZ.size(); ++i) {
        if (stopSwitch) {
            Thread1.Kill();
            break;
        }
        const Ref<FolderItem> f = takeItem(i, GetFolderItem(itemArrayZ[i]));
        Application::DoEvents(eventLoopSpell);
        const std::string extension = lastExtension(f->Name());
        if (nameHas(".doc", extension)) {
            doWordFolderThread(f);
            Application::DoEvents(eventLoopSpell);
        } else if (nameHas(".txt", extension)) {
            doTextThread(f);
            Application::DoEvents(eventLoopSpell);
        } else if (nameHas(".csv", extension) && f->OpenAsTextFile()) {
            doCSVFolderThread(f);
            Application::DoEvents(eventLoopSpell);
        }
        yieldToThreads();
    }
    Application::DoEvents(eventLoopSpell);
    myProgressText = "Searching subfolders.";
}

Ref<FolderItem> Window1::takeItem(std::size_t i, Ref<FolderItem> f)
{
    currentFile = itemArrayZ[i];
    myProgressText = searchingText(i + 1, itemArrayZ.size(), f->Name());
    counter = std::int64_t(i);
    nextOne = progressValue(i, itemArrayZ.size());
    return f;
}

void Window1::doTextThread(const Ref<FolderItem>& f)
{
    setSearchText({});
    currentFile = f->Name();
    const Ref<TextInputStream> stream = f->OpenAsTextFile();
    if (!stream)
        return;
    setSearchText(stream->ReadAll());
    stageMatches();
    stream->Close();
}

void Window1::doCSVFolderThread(const Ref<FolderItem>& f)
{
    setSearchText({});
    const Ref<TextInputStream> stream = f->OpenAsTextFile();
    if (!stream)
        return;
    setSearchText(stream->ReadAll());
    stageMatches();
    stream->Close();
}

void Window1::doWordFolderThread(const Ref<FolderItem>& f)
{
    if (nameHas(lockFilePattern, f->Name()))
        return;
    const Ref<BinaryStream> stream = BinaryStream::Open(*f);
    const Ref<WordFileMBS> document = WordFileMBS::OpenData(stream->Read(stream->Length()));
    setSearchText(document ? document->Text() : sampleAddress);
    stageMatches();
    stream->Close();
}

void Window1::stageMatches()
{
    // A hold on the text: at a yield another reader may put its own into searchText.
    const std::shared_ptr<const std::string> text = searchText;
    AddressScanner scanner(*text);
    while (const auto address = scanner.next()) {
        resultArray.emplace_back(*address);
        ++rCounter;
        yieldToThreads();
    }
}

void Window1::setSearchText(std::string text)
{
    searchText = std::make_shared<const std::string>(std::move(text));
}

} // namespace quilvane
