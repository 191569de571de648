// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Window1.h"

#include "batch/readerRules.h"
#include "framework/dialogs/dialogs.h"
#include "framework/files/displayName.h"
#include "framework/strings.h"
#include "readers/MyDynaPDFMBS.h"

namespace quilvane {

void Window1::doPDF(const Ref<FolderItem>& f)
{
    // Kept here during the whole run: a dialog of the engine runs the event loop, in which another run may
    // replace `pdf`.
    const auto engine = Ref<MyDynaPDFMBS>::make();
    pdf = engine;
    engine->CreateNewPDF();
    engine->SetImportFlags(0x80000000);
    const Ref<FolderItem> file = GetFolderItem(f->NativePath());
    // None of the messages ends the run: after a failed step comes the next one.
    if (!file || !file->Exists())
        MsgBox(displayPath(file->Name())
            + " does not seem to be a valid PDF file. Please change code to point to a pdf file.");
    if (engine->OpenImportFile(*file) != 0)
        MsgBox(displayPath(file->Name()) + " could not be opened. There was an error loading pdf");
    engine->ImportPDFFile(1);
    Slider1.setMaximum(engine->GetPageCount() - 1);
    Load(1);
    for (int index = 0; index <= engine->GetPageCount() - 1; ++index) {
        Slider1.setValue(index); // loads the page, unless the slider has this value already
        searchText = searchText + " " + searchText2;
    }
    doPDFCheckThread();
    if (engine->GetPageCount() > 0)
        account.read(f->NativePath(), FileReader::PDF);
    else
        account.left(f->NativePath(), RunAccount::Left::NotOpened);
    setFinishMessage(ProgressText);
}

void Window1::Load(int pageNumber)
{
    // So each page drops the ones before it, and only the last page of a document is scanned. It has always
    // been so.
    forgetText();
    const Ref<MyDynaPDFMBS> engine = pdf;
    if (!engine->EditPage(pageNumber)) {
        MsgBox("Failed to edit page " + Str(pageNumber));
        return;
    }
    searchText2 = engine->ExtractPageText(false);
    engine->EndPage();
}

void Window1::Slider1_ValueChanged()
{
    Load(int(Slider1.Value()) + 1);
}

void Window1::doPDFCheck()
{
    rCounter = 0;
    if (TextField1.Text().empty())
        return;
    addMatchesToList(TextField1.Text(), Counting::On);
    enableButtonsAfterScan();
    setFinishMessage(ProgressText);
    checkDuplicates();
    setTotalLabel();
}

} // namespace quilvane
