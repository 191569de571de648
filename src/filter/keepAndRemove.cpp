// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filter/filterWIn.h"

#include "app/Window1.h"
#include "filter/domainFilter.h"
#include "framework/controls/RowStore.h"
#include "framework/keepWindowPainted.h"
#include "framework/strings.h"

#include <exception>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

/// Calls visit(filter, row) for each ticked filter and each row: filter by filter, and for each from the last
/// row to the first.
template <typename Visit>
void runFilters(
    RowFilter::Purpose purpose, const DomainFilterChoice& choice, std::size_t rowCount, Visit visit)
{
    constexpr std::size_t rowsPerBlock = 64; // so few, because a pattern that the user typed may be slow
    for (std::size_t i = 0; i < domainFilterCount; ++i) {
        if (!choice.ticked[i])
            continue;
        RowFilter filter(purpose, i, choice);
        for (std::size_t row = rowCount; row-- > 0;) {
            visit(filter, row);
            if (row % rowsPerBlock == 0)
                keepWindowPainted();
        }
    }
}

void disableButtonsOverEmptyList(Window1& main)
{
    if (main.Listbox1.ListCount() > 0)
        return;
    for (PushButton* button : { &main.filterBtn, &main.searchBtn, &main.exportBtn, &main.exportTabDelimited })
        button->setEnabled(false);
}

void showCount(Window1& main)
{
    main.results.setText(Str(main.Listbox1.ListCount()) + " Entries");
}

} // namespace

// Both work on the main list, wherever the dialog was opened from.

void filterWIn::keepBtn_Action()
{
    Window1& main = implicit<Window1>();
    const DomainFilterChoice choice = takeChoice();
    const RowStore& rows = main.Listbox1.Rows();
    // With nothing ticked no row is kept, without a question. A row that several filters match is kept once
    // for each.
    RowStore kept;
    runFilters(RowFilter::Purpose::Keep, choice, rows.size(), [&](RowFilter& filter, std::size_t row) {
        if (filter.matches(rows[row]))
            kept.append(rows[row]);
    });
    main.Listbox1.ReplaceRows(std::move(kept));
    main.noteRemovedRows();
    showCount(main);
    disableButtonsOverEmptyList(main);
    main.clearFinishLine();
    Close();
}

void filterWIn::removeBtn_Action()
{
    Window1& main = implicit<Window1>();
    const DomainFilterChoice choice = takeChoice();
    const RowStore& rows = main.Listbox1.Rows();
    std::vector<unsigned char> stays(rows.size(), 1);
    std::exception_ptr failure;
    try {
        runFilters(RowFilter::Purpose::Remove, choice, rows.size(), [&](RowFilter& filter, std::size_t row) {
            if (stays[row] != 0 && filter.matches(rows[row]))
                stays[row] = 0;
        });
    } catch (...) {
        failure = std::current_exception();
    }
    // Also after a failure: what an earlier filter has removed is gone.
    main.Listbox1.RetainRows(0, stays);
    main.noteRemovedRows();
    if (failure)
        std::rethrow_exception(failure);
    disableButtonsOverEmptyList(main);
    showCount(main);
    main.clearFinishLine();
    Close();
}

} // namespace quilvane
