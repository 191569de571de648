// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/internal/RowPlace.h"

#include <QListView>

#include <functional>

namespace quilvane {

/// A list view that computes where a row is instead of laying rows out: all are of one height, and the scroll
/// bar counts rows, so a million of them cost what thirty cost.
///
/// It derives from QListView because Qt's bridge to screen readers knows that class as a list, and overrides
/// all of its layout. QListView also takes the row numbers for screen readers from its layout, so those
/// events are overridden, too.
class RowView : public QListView {
public:
    explicit RowView(QWidget* parent);

    /// Called when the selection changes.
    std::function<void()> selectionMoved;
    /// Makes the data for copying or dragging the selected rows; the caller owns it.
    std::function<QMimeData*()> selectedRows;
    /// Calls its argument, which drags rows out of the list, as one event of the program.
    std::function<void(const std::function<void()>&)> runDrag;

    bool hasRows() const { return rowCount() > 0; }
    bool hasSelection() const { return selectionModel()->hasSelection(); }
    /// Puts the selected rows into the clipboard.
    void copySelection() const;

    /// The place in the rows that the view knows.
    RowPlace place() const;
    /// To be called after the model was reset. Restoring the selection fires no event.
    void restore(const RowPlace& place);

    QRect visualRect(const QModelIndex& index) const override;
    QModelIndex indexAt(const QPoint& point) const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    void doItemsLayout() override;
    void reset() override;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void startDrag(Qt::DropActions actions) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void updateGeometries() override;
    void rowsInserted(const QModelIndex& parent, int start, int end) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override;
    int verticalOffset() const override;
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags flags) override;
    QRegion visualRegionForSelection(const QItemSelection& selection) const override;

private:
    int rowCount() const;
    int rowHeight() const;
    /// How many whole rows fit, at least 1.
    int rowsInSight() const;
    /// The row at `y` in the viewport; may be a number that no row has.
    int rowAt(int y) const;

    bool m_restoring = false;
};

} // namespace quilvane
