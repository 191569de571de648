// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace quilvane {

class RowStore;

/// A list of one column, made for millions of rows. Rows are numbered from 0.
///
/// New rows can be read at once; the view is told of them once in a turn of the event loop, however many
/// there are, and draws only those in sight.
class Listbox : public RectControl {
public:
    Listbox(Window& window, std::string_view name);
    ~Listbox() override;

    /// The selection has changed.
    std::function<void()> Change;

    void AddRow(std::string_view text);

    /// Adds copies of the rows of a store from row `first` on.
    void AddRows(const RowStore& rows, std::size_t first);

    /// Adds the rows of a store and leaves it empty.
    void TakeRows(RowStore&& rows);

    std::size_t ListCount() const;

    /// The text of a row; throws OutOfBoundsException. `column` is 0, or -1 for the whole row, its columns
    /// joined by tabs, which in a list of one column is the same text.
    std::string Cell(std::size_t row, int column) const;

    /// As Cell, without a copy: valid until rows are removed.
    std::string_view Row(std::size_t row) const;

    /// All rows, to be read without a check. Valid as long as the list.
    const RowStore& Rows() const;

    void DeleteAllRows();

    /// Takes back rows that have just been added: removes all but the first `count`.
    void TruncateRows(std::size_t count);

    /// Removes each row i from `first` on with stays[i - first] == 0, all in one pass; later rows move up.
    /// `stays` has ListCount() - first elements. Rows before `first` cost nothing. What is selected and what
    /// is in sight moves with the rows.
    void RetainRows(std::size_t first, std::span<const unsigned char> stays);

    /// Replaces all rows by these and leaves the store empty. Nothing is selected then, since it is not known
    /// which new row stands for which old one.
    void ReplaceRows(RowStore&& rows);

    /// A number that changes each time that DeleteAllRows, RetainRows or ReplaceRows has removed or moved
    /// rows. While it is the same, each row is where it was.
    std::uint64_t Arrangement() const { return m_arrangement; }

    /// Changes nothing: the list never has a heading.
    void setHasHeading(bool) { }

    /// Widths of the columns in pixels, separated by commas. Changes nothing: the only column fills the list,
    /// so that no address is cut off.
    void setColumnWidths(std::string_view) { }

private:
    class Model;

    void makeWidget(Native& native) override;
    void selectionMoved();

    std::unique_ptr<Model> m_model;
    std::uint64_t m_arrangement = 0;
};

} // namespace quilvane
