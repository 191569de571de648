// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What all sources end in: the scan, the list, and the words that tell what was found.

#include "app/Window1.h"

#include "framework/Application.h"
#include "framework/controls/RowStore.h"
#include "framework/files/availableMemory.h"
#include "framework/keepWindowPainted.h"
#include "scan/AddressScanner.h"
#include "scan/TextPieces.h"
#include "scan/endTexts.h"

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
        yieldToThreads();
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
    if (Listbox1.Arrangement() != m_checkedArrangement)
        m_duplicates.forget();
    const RowStore& rows = Listbox1.Rows();
    DuplicateIndex::Pass pass(m_duplicates, rows.size(), [&rows](std::size_t row) { return rows[row]; });
    while (pass.step())
        keepWindowPainted();
    Listbox1.RetainRows(pass.firstRow(), pass.stays());
    m_checkedArrangement = Listbox1.Arrangement();
}

void Window1::Listbox1_Change()
{
    clearBtn.setEnabled(Listbox1.ListCount() > 0);
}

void Window1::clearBtn_Action()
{
    Listbox1.DeleteAllRows();
    m_duplicates.forget();
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
