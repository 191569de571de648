// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What all sources end in: the scan, the list, and the words that tell what was found.

#include "app/Window1.h"

#include "framework/Application.h"
#include "framework/files/availableMemory.h"
#include "framework/keepWindowPainted.h"
#include "scan/AddressScanner.h"
#include "scan/TextPieces.h"
#include "scan/endTexts.h"
#include "scan/survivors.h"

namespace quilvane {

void Window1::scanToList(TextInputStream& stream, Counting counting)
{
    TextPieces pieces;
    while (const std::size_t count = stream.Read(pieces.room())) {
        addMatchesToList(pieces.take(count), counting);
        // A text in which nothing can be cut is kept whole, in a buffer that may double at the next read.
        requireMemory(2 * pieces.rest().size(), "A word in this file is too long");
    }
    addMatchesToList(pieces.rest(), counting);
}

void Window1::addMatchesToList(std::string_view text, Counting counting)
{
    const std::size_t rowsBefore = Listbox1.ListCount();
    forEachAddress(text, [this](std::string_view address) { Listbox1.AddRow(address); });
    if (counting == Counting::On)
        rCounter += std::int64_t(Listbox1.ListCount() - rowsBefore);
}

void Window1::flushResultArray()
{
    for (std::size_t i = 0; i < resultArray.size(); ++i) {
        Listbox1.AddRow(resultArray[i]);
    }
}

void Window1::enableButtonsBehindScan()
{
    exportBtn.setEnabled(true);
    clearBtn.setEnabled(true);
    searchBtn.setEnabled(true);
    TextField1.setText({});
}

void Window1::setFinishMessage(Label& label)
{
    label.setText(finishMessage(rCounter));
    // Off when this run has found nothing, whatever earlier runs have left in the list.
    filterBtn.setEnabled(rCounter > 0);
    clearBtn.setEnabled(rCounter > 0);
}

void Window1::setTotalLabel()
{
    results.setVisible(true);
    const std::size_t rows = Listbox1.ListCount();
    if (rows == 0)
        return;
    results.setText(totalLabel(rows));
    searchBtn.setEnabled(true);
    filterBtn.setEnabled(true);
    exportBtn.setEnabled(true);
}

void Window1::checkDuplicates()
{
    const auto rowText = [this](std::size_t row) { return Listbox1.Row(row); };
    Listbox1.RetainRows(0, findSurvivors(Listbox1.ListCount(), rowText, keepWindowPainted));
}

void Window1::Listbox1_Change()
{
    clearBtn.setEnabled(Listbox1.ListCount() > 0);
}

void Window1::clearBtn_Action()
{
    Listbox1.DeleteAllRows();
    clearBtn.setEnabled(false);
    exportBtn.setEnabled(false);
    results.setVisible(true);
    results.setText("Total: 0 entries"); // the one total without a full stop
    // The pass below switches Search on again.
    searchBtn.setEnabled(false);
    filterBtn.setEnabled(false);
    ProgressText.setText("");
    EnableMenuItems();
}

} // namespace quilvane
