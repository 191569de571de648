// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QListView>

namespace quilvane {

/// A list view that computes where a row is instead of laying rows out: all are of one height, and the scroll
/// bar counts rows, so a million of them cost what thirty cost.
///
/// It derives from QListView, and so overrides all of its layout, because that is the class which Qt's bridge
/// to screen readers knows as a list. Which row is meant QListView takes from its layout, so what readers are
/// told is overridden, too.
class RowView : public QListView {
public:
    explicit RowView(QWidget* parent);

    /// Called when the selection changes.
    std::function<void()> selectionMoved;

    QRect visualRect(const QModelIndex& index) const override;
    QModelIndex indexAt(const QPoint& point) const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    void doItemsLayout() override;
    void reset() override;

protected:
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
    /// Rows that fit in whole, at least 1.
    int rowsInSight() const;
};

} // namespace quilvane
