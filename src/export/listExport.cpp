// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/listExport.h"

#include "framework/controls/RowStore.h"
#include "framework/dialogs/dialogs.h"
#include "framework/exceptions.h"
#include "framework/files/TextOutputStream.h"
#include "framework/files/displayName.h"
#include "framework/keepWindowPainted.h"
#include "framework/strings.h"

namespace quilvane {

namespace {

/// All rows, unchanged: nothing is quoted, sorted or left out.
void writeRows(TextOutputStream& stream, const RowStore& rows, ExportFormat format)
{
    constexpr std::size_t pieceSize = std::size_t(256) * 1024;
    const bool isCSV = format == ExportFormat::CSV;
    const std::string separator = isCSV ? "," : Chr(9);
    std::string piece;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (row > 0)
            piece += endOfLine;
        piece += rows[row];
        if (row > 0 || isCSV)
            piece += separator;
        if (piece.size() >= pieceSize) {
            stream.Write(piece);
            piece.clear();
            keepWindowPainted();
        }
    }
    stream.WriteLine(piece);
}

} // namespace

void exportList(const Listbox& list, ExportFormat format, OnCancel onCancel)
{
    if (list.ListCount() == 0)
        throw OutOfBoundsException("There is nothing to export: the list is empty.");
    const Ref<FolderItem> file = GetSaveFolderItem(
        "TEXT", format == ExportFormat::CSV ? "email_list.csv" : "email_list.txt", "Export");
    if (!file) {
        // The message is wrong, since no write began, but users know it.
        if (onCancel == OnCancel::ShowMessage)
            MsgBox("Could not write the file for some reason.");
        return;
    }
    const Ref<TextOutputStream> stream = file->CreateTextFile();
    writeRows(*stream, list.Rows(), format);
    stream->Close();
    if (!Launch(*file))
        throw IOException("The file \"" + displayPath(file->NativePath())
            + "\" is written, but no application was found to open it.");
}

} // namespace quilvane
