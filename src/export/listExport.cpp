// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/listExport.h"

#include "framework/dialogs/dialogs.h"
#include "framework/files/TextOutputStream.h"
#include "framework/text/strings.h"
#include "framework/threads/Thread.h"

namespace quilvane {

std::string exportText(const Listbox& list, ExportFormat format)
{
    const std::string separator = format == ExportFormat::CSV ? "," : Chr(9);
    std::string text(list.Row(0));
    if (format == ExportFormat::CSV)
        text += separator;
    // The count is read at each pass: rows that a run adds meanwhile are taken along.
    for (std::size_t row = 1; row < list.ListCount(); ++row) {
        text += endOfLine;
        text += list.Row(row);
        text += separator;
        yieldToThreads();
    }
    return text;
}

void exportList(const Listbox& list, ExportFormat format, OnCancel onCancel)
{
    const std::string text = exportText(list, format);
    const Ref<FolderItem> file = GetSaveFolderItem(
        "TEXT", format == ExportFormat::CSV ? "email_list.csv" : "email_list.txt", "Export");
    if (!file) {
        // It blames a write that never began; users know the words.
        if (onCancel == OnCancel::ShowMessage)
            MsgBox("Could not write the file for some reason.");
        return;
    }
    const Ref<TextOutputStream> stream = file->CreateTextFile();
    stream->WriteLine(text);
    stream->Close();
    Launch(*file);
}

} // namespace quilvane
