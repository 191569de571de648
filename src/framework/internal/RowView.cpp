// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/RowView.h"

#include <QAccessible>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <limits>

namespace quilvane {

namespace {

/// Tells screen readers of an event that has befallen one row.
void announce(QAbstractItemView& view, const QModelIndex& row, QAccessible::Event what)
{
    if (!row.isValid() || !QAccessible::isActive())
        return;
    QAccessibleEvent event(&view, what);
    event.setChild(row.row());
    QAccessible::updateAccessibility(&event);
}

} // namespace

RowView::RowView(QWidget* parent)
    : QListView(parent)
{
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setVerticalScrollMode(ScrollPerItem);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideRight);
}

QRect RowView::visualRect(const QModelIndex& index) const
{
    if (!index.isValid())
        return {};
    const qint64 top = (qint64(index.row()) - verticalScrollBar()->value()) * rowHeight();
    constexpr qint64 limit = std::numeric_limits<int>::max() / 2;
    return { 0, int(std::clamp(top, -limit, limit)), viewport()->width(), rowHeight() };
}

QModelIndex RowView::indexAt(const QPoint& point) const
{
    const int row = verticalScrollBar()->value() + point.y() / rowHeight();
    if (point.y() < 0 || row >= rowCount())
        return {};
    return model()->index(row, 0);
}

void RowView::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    if (!index.isValid())
        return;
    QScrollBar* bar = verticalScrollBar();
    const int row = index.row();
    const int first = bar->value();
    if (hint == PositionAtTop || (hint == EnsureVisible && row < first))
        bar->setValue(row);
    else if (hint == PositionAtBottom || (hint == EnsureVisible && row >= first + rowsInSight()))
        bar->setValue(row - rowsInSight() + 1);
    else if (hint == PositionAtCenter)
        bar->setValue(row - rowsInSight() / 2);
}

void RowView::doItemsLayout()
{
    QAbstractItemView::doItemsLayout();
}

void RowView::reset()
{
    QAbstractItemView::reset();
}

void RowView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const int first = verticalScrollBar()->value() + event->rect().top() / rowHeight();
    const int last
        = std::min(rowCount() - 1, verticalScrollBar()->value() + event->rect().bottom() / rowHeight());
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = model()->index(row, 0);
        option.rect = visualRect(index);
        option.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
        option.state.setFlag(QStyle::State_HasFocus, hasFocus() && index == currentIndex());
        itemDelegateForIndex(index)->paint(&painter, option, index);
    }
}

void RowView::resizeEvent(QResizeEvent* event)
{
    QAbstractItemView::resizeEvent(event);
    updateGeometries();
}

void RowView::scrollContentsBy(int, int)
{
    viewport()->update();
}

void RowView::updateGeometries()
{
    QAbstractItemView::updateGeometries();
    verticalScrollBar()->setSingleStep(1);
    verticalScrollBar()->setPageStep(rowsInSight());
    verticalScrollBar()->setRange(0, std::max(0, rowCount() - rowsInSight()));
}

void RowView::rowsInserted(const QModelIndex& parent, int start, int end)
{
    QAbstractItemView::rowsInserted(parent, start, end);
    updateGeometries();
    viewport()->update();
}

void RowView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QAbstractItemView::selectionChanged(selected, deselected);
    for (const QItemSelectionRange& range : deselected) // one row each
        announce(*this, range.topLeft(), QAccessible::SelectionRemove);
    for (const QItemSelectionRange& range : selected)
        announce(*this, range.topLeft(), QAccessible::SelectionAdd);
    if (selectionMoved)
        selectionMoved();
}

void RowView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QAbstractItemView::currentChanged(current, previous);
    if (hasFocus())
        announce(*this, current, QAccessible::Focus);
}

QModelIndex RowView::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int current = currentIndex().isValid() ? currentIndex().row() : -1;
    int row = 0;
    switch (action) {
    case MoveUp:
    case MoveLeft:
    case MovePrevious:
        row = current - 1;
        break;
    case MoveDown:
    case MoveRight:
    case MoveNext:
        row = current + 1;
        break;
    case MovePageUp:
        row = current - rowsInSight();
        break;
    case MovePageDown:
        row = current + rowsInSight();
        break;
    case MoveHome:
        row = 0;
        break;
    case MoveEnd:
        row = rowCount() - 1;
        break;
    }
    return rowCount() == 0 ? QModelIndex() : model()->index(std::clamp(row, 0, rowCount() - 1), 0);
}

int RowView::horizontalOffset() const
{
    return 0;
}

int RowView::verticalOffset() const
{
    return verticalScrollBar()->value();
}

void RowView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags flags)
{
    const QModelIndex index = indexAt(rect.topLeft());
    selectionModel()->select(index.isValid() ? QItemSelection(index, index) : QItemSelection(), flags);
}

QRegion RowView::visualRegionForSelection(const QItemSelection& selection) const
{
    QRegion region;
    for (const QItemSelectionRange& range : selection)
        region += visualRect(range.topLeft()).united(visualRect(range.bottomRight()));
    return region;
}

int RowView::rowCount() const
{
    return model() ? model()->rowCount() : 0;
}

int RowView::rowHeight() const
{
    return fontMetrics().height() + 4;
}

int RowView::rowsInSight() const
{
    return std::max(1, viewport()->height() / rowHeight());
}

} // namespace quilvane
