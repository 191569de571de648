// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The steps with which every search ends: scan the text, fill the list, report what was found.

#include "app/Window1.h"

#include "framework/Application.h"
#include "framework/keepWindowPainted.h"
#include "scan/AddressScanner.h"
#include "scan/endOfRunTexts.h"

#include <algorithm>

namespace quilvane {

void Window1::scanToList(TextInputStream& stream, Counting counting)
{
    scanAllToList([&stream](const auto& scan) { readInPieces(stream, scan); }, counting);
}

void Window1::addMatchesToList(std::string_view text, Counting counting)
{
    scanAllToList([text](const auto& scan) { scan(text); }, counting);
}

void Window1::scanAllToList(const std::function<void(const TextScan& scan)>& giveText, Counting counting)
{
    const std::size_t rowsBefore = Listbox1.ListCount();
    try {
        giveText([this](std::string_view text) {
            forEachAddress(text, [this](std::string_view address) { Listbox1.AddRow(address); });
        });
    } catch (...) {
        Listbox1.TruncateRows(rowsBefore);
        throw;
    }
    if (counting == Counting::On)
        rCounter += std::int64_t(Listbox1.ListCount() - rowsBefore);
}

void Window1::flushStagedRows()
{
    noteRemovedRows();
    const std::size_t first = resultArray.beginFlush();
    Listbox1.AddRows(resultArray.rows(), first);
}

void Window1::moveStagedRowsToList()
{
    noteRemovedRows();
    DuplicateIndex ofStaged;
    RowStore staged = resultArray.release(ofStaged);
    const bool wasEmpty = Listbox1.ListCount() == 0;
    // Rows that were flushed before are added once more; the removal of duplicates removes them again.
    Listbox1.TakeRows(std::move(staged));
    if (wasEmpty) // then the index of the staged rows fits the list
        m_knownRows = std::move(ofStaged);
}

std::size_t Window1::keepStagedFinds()
{
    checkDuplicates(); // duplicates that Keep has left must not count below
    const std::size_t rowsBefore = Listbox1.ListCount();
    moveStagedRowsToList();
    checkDuplicates();
    EnableMenuItems();
    return Listbox1.ListCount() - rowsBefore;
}

void Window1::noteRemovedRows()
{
    if (Listbox1.Arrangement() == m_arrangement)
        return;
    m_arrangement = Listbox1.Arrangement();
    m_knownRows.forget();
    resultArray.unmark();
}

void Window1::enableButtonsAfterScan()
{
    exportBtn.setEnabled(true);
    clearBtn.setEnabled(true);
    searchBtn.setEnabled(true);
    TextField1.setText({});
}

void Window1::clearFinishLine()
{
    ProgressText.setText("");
    ProgressText.setHelpText({});
}

void Window1::setFinishMessage(Label& label)
{
    showFinishMessage(label);
    ProgressText.setHelpText(account.text());
}

void Window1::showFinishMessage(Label& label)
{
    label.setText(finishMessage(rCounter));
    Announce(label.Text());
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
    noteRemovedRows();
    DuplicateIndex::Pass pass(
        m_knownRows, Listbox1.ListCount(), [this](std::size_t row) { return Listbox1.Row(row); });
    while (pass.step())
        keepWindowPainted();
    Listbox1.RetainRows(pass.firstRow(), pass.stays());
    m_arrangement = Listbox1.Arrangement();
}

void Window1::Listbox1_Change()
{
    clearBtn.setEnabled(Listbox1.ListCount() > 0);
}

void Window1::clearBtn_Action()
{
    Listbox1.DeleteAllRows();
    noteRemovedRows();
    clearBtn.setEnabled(false);
    exportBtn.setEnabled(false);
    results.setVisible(true);
    results.setText("Total: 0 entries"); // the one total without a full stop
    // The pass below switches Search on again.
    searchBtn.setEnabled(false);
    filterBtn.setEnabled(false);
    clearFinishLine();
    EnableMenuItems();
}

} // namespace quilvane
