// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filter/filterWIn.h"

#include "app/Window1.h"
#include "filter/domainFilter.h"
#include "framework/keepWindowPainted.h"
#include "framework/strings.h"

#include <exception>

namespace quilvane {

namespace {

void finish(Window1& main)
{
    const std::size_t rows = main.Listbox1.ListCount();
    main.results.setText(Str(rows) + " Entries");
    if (rows == 0) {
        for (PushButton* button :
            { &main.filterBtn, &main.searchBtn, &main.exportBtn, &main.exportTabDelimited })
            button->setEnabled(false);
    }
    main.ProgressText.setText("");
}

} // namespace

// Both work on the main list, wherever the dialog was opened from.

void filterWIn::keepBtn_Action()
{
    Window1& main = implicit<Window1>();
    const auto rowText = [&main](std::size_t row) { return main.Listbox1.Row(row); };
    const DomainFilterChoice choice = takeChoice();
    // With nothing ticked no row is kept, and nothing asks.
    main.Listbox1.ArrangeRows(rowsToKeep(choice, main.Listbox1.ListCount(), rowText, keepWindowPainted));
    finish(main);
    Close();
}

void filterWIn::removeBtn_Action()
{
    Window1& main = implicit<Window1>();
    const auto rowText = [&main](std::size_t row) { return main.Listbox1.Row(row); };
    const DomainFilterChoice choice = takeChoice();
    std::vector<unsigned char> stays(main.Listbox1.ListCount(), 1);
    std::exception_ptr failure;
    try {
        markRowsToRemove(choice, rowText, stays, keepWindowPainted);
    } catch (...) {
        failure = std::current_exception();
    }
    // What earlier filters have removed is gone, whatever ends a later one.
    main.Listbox1.RetainRows(stays);
    if (failure)
        std::rethrow_exception(failure);
    finish(main);
    Close();
}

} // namespace quilvane
