// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/RowView.h"

#include "framework/internal/editCommands.h"
#include "framework/internal/fitText.h"
#include "framework/internal/tooltip.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDrag>
#include <QHelpEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <limits>

namespace quilvane {

namespace {

/// Tells screen readers of an event of one row.
void announce(QAbstractItemView& view, int row, QAccessible::Event what)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(&view, what);
    event.setChild(row);
    QAccessible::updateAccessibility(&event);
}

qint64 countOf(const QItemSelection& rows)
{
    qint64 count = 0;
    for (const QItemSelectionRange& range : rows)
        count += range.height();
    return count;
}

/// With places for line breaks after the signs in an address and in long words, where Qt would find none.
QString breakable(const QString& text)
{
    constexpr qsizetype longestWord = 40;
    constexpr QChar zeroWidthSpace(0x200b);
    QString result;
    qsizetype word = 0;
    for (const QChar character : text) {
        result += character;
        ++word;
        if (character.isPunct() || character.isSymbol()
            || (word >= longestWord && !character.isHighSurrogate())) {
            result += zeroWidthSpace;
            word = 0;
        }
    }
    return result;
}

/// Shortens a text that is too long for the list, and shows all of it in a tooltip.
class RowDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
        const QModelIndex& index) override
    {
        QString text = index.data().toString();
        if (event->type() != QEvent::ToolTip)
            return false;
        if (text == textFor(option, index)) {
            QToolTip::hideText();
            return true;
        }
        constexpr qsizetype longest = 3200; // fits on a screen
        if (text.size() > longest)
            text = text.left(longest) + QChar(0x2026);
        text = breakable(text);
        QToolTip::showText(event->globalPos(), tooltip(text), view, option.rect);
        return true;
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->text = textFor(*option, index);
    }

private:
    static QString textFor(const QStyleOptionViewItem& option, const QModelIndex& index)
    {
        const QStyle& style = *option.widget->style();
        const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, &option, option.widget) + 1;
        return shortenedAddress(
            index.data().toString(), option.fontMetrics, option.rect.width() - 2 * margin);
    }
};

} // namespace

RowView::RowView(QWidget* parent)
    : QListView(parent)
{
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(ExtendedSelection);
    setDragDropMode(DragOnly);
    setVerticalScrollMode(ScrollPerItem);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setItemDelegate(new RowDelegate(this));
}

void RowView::copySelection() const
{
    if (hasSelection())
        QApplication::clipboard()->setMimeData(selectedRows());
}

RowPlace RowView::place() const
{
    RowPlace place;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        place.selected.push_back({ std::size_t(range.top()), std::size_t(range.bottom()) + 1 });
    std::sort(place.selected.begin(), place.selected.end(),
        [](const RowRange& a, const RowRange& b) { return a.first < b.first; });
    if (currentIndex().isValid())
        place.current = std::size_t(currentIndex().row());
    place.top = std::size_t(verticalScrollBar()->value());
    return place;
}

void RowView::restore(const RowPlace& place)
{
    m_restoring = true;
    QItemSelection selection;
    for (const RowRange& range : place.selected)
        selection.append(
            QItemSelectionRange(model()->index(int(range.first), 0), model()->index(int(range.end) - 1, 0)));
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (place.current != RowPlace::none && hasRows())
        selectionModel()->setCurrentIndex(
            model()->index(int(std::min(place.current, std::size_t(rowCount()) - 1)), 0),
            QItemSelectionModel::NoUpdate);
    verticalScrollBar()->setValue(int(place.top));
    m_restoring = false;
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
    const int row = rowAt(point.y());
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

void RowView::contextMenuEvent(QContextMenuEvent* event)
{
    const QRect row = visualRect(currentIndex()) & viewport()->rect();
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    popUpEditMenu(*this, byKey ? viewport()->mapToGlobal(row.bottomLeft()) : event->globalPos());
}

void RowView::focusInEvent(QFocusEvent* event)
{
    QListView::focusInEvent(event);
    // After Qt has told screen readers of the list itself: they speak what comes last.
    QTimer::singleShot(0, this, [this] {
        if (hasFocus() && currentIndex().isValid())
            announce(*this, currentIndex().row(), QAccessible::Focus);
    });
}

void RowView::keyPressEvent(QKeyEvent* event)
{
    // Qt would copy only the row with the focus.
    if (event->matches(QKeySequence::Copy))
        copySelection();
    else
        QListView::keyPressEvent(event);
}

void RowView::startDrag(Qt::DropActions)
{
    if (!hasSelection())
        return;
    runDrag([this] {
        auto* drag = new QDrag(this); // deletes itself
        drag->setMimeData(selectedRows());
        drag->exec(Qt::CopyAction);
    });
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
    if (m_restoring)
        return;
    // A few rows one by one, so that a screen reader speaks them.
    constexpr qint64 few = 8;
    if (countOf(selected) + countOf(deselected) > few) {
        QAccessibleEvent event(this, QAccessible::SelectionWithin);
        QAccessible::updateAccessibility(&event);
    } else {
        for (const QItemSelectionRange& range : deselected) {
            for (int row = range.top(); row <= range.bottom(); ++row)
                announce(*this, row, QAccessible::SelectionRemove);
        }
        for (const QItemSelectionRange& range : selected) {
            for (int row = range.top(); row <= range.bottom(); ++row)
                announce(*this, row, QAccessible::SelectionAdd);
        }
    }
    if (selectionMoved)
        selectionMoved();
}

void RowView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QAbstractItemView::currentChanged(current, previous);
    if (hasFocus() && current.isValid() && !m_restoring)
        announce(*this, current.row(), QAccessible::Focus);
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
    // The rectangle goes from where the mouse was pressed to where it is, so either end may be the upper one.
    const int first = std::max(0, rowAt(std::min(rect.top(), rect.bottom())));
    const int last = std::min(rowCount() - 1, rowAt(std::max(rect.top(), rect.bottom())));
    QItemSelection rows;
    if (first <= last)
        rows.select(model()->index(first, 0), model()->index(last, 0));
    selectionModel()->select(rows, flags);
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

int RowView::rowAt(int y) const
{
    const int above = y < 0 ? (rowHeight() - 1 - y) / rowHeight() : 0;
    return verticalScrollBar()->value() + (y < 0 ? -above : y / rowHeight());
}

} // namespace quilvane
