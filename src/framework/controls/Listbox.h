// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <cstddef>
#include <span>
#include <vector>

namespace quilvane {

class RegEx;

/// A list of one column, made for millions of rows. Rows are numbered from 0.
///
/// Rows belong to the program at once; the view is told of them once a pass of the event loop, however many
/// came, and draws only those in sight.
class Listbox : public RectControl {
public:
    Listbox(Window& window, std::string_view name);
    ~Listbox() override;

    /// Another row was selected, or none is any more.
    std::function<void()> Change;

    void AddRow(std::string_view text);

    std::size_t ListCount() const;

    /// The text of a row; throws OutOfBoundsException. `column` is 0, or -1 for the whole row, its columns
    /// joined by tabs, which in a list of one column is the same text.
    std::string Cell(std::size_t row, int column) const;

    /// As Cell, without a copy: valid until rows are removed.
    std::string_view Row(std::size_t row) const;

    /// The rows in which `expression` is found, the last one first. Calls `meanwhile` now and then. Throws
    /// what RegEx::matches() throws.
    std::vector<std::size_t> RowsMatching(RegEx& expression, const std::function<void()>& meanwhile) const;

    void DeleteAllRows();

    /// Removes each row i with keep[i] == 0, all in one pass; later rows move up. `keep` has ListCount()
    /// elements.
    void RetainRows(std::span<const unsigned char> keep);

    bool HasHeading() const { return m_hasHeading; }
    void setHasHeading(bool hasHeading) { m_hasHeading = hasHeading; }

    /// Widths of the columns in pixels, separated by commas. The one column there is fills the list whatever
    /// they say, since an address cut off at a width nobody sees would help no one.
    const std::string& ColumnWidths() const { return m_columnWidths; }
    void setColumnWidths(std::string widths) { m_columnWidths = std::move(widths); }

    /// Makes the list anew from rows of its own: row i becomes what was row rows[i]. A row may be named
    /// several times.
    void ArrangeRows(std::span<const std::size_t> rows);

private:
    class Model;

    void makeWidget(Native& native) override;
    void selectionMoved();

    std::unique_ptr<Model> m_model;
    std::string m_columnWidths;
    bool m_hasHeading = false;
};

} // namespace quilvane
