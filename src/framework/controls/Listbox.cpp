// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/Listbox.h"

#include "framework/EventGuard.h"
#include "framework/controls/RowStore.h"
#include "framework/exceptions.h"
#include "framework/internal/CopiedRows.h"
#include "framework/internal/Native.h"
#include "framework/internal/RowView.h"
#include "framework/internal/qtText.h"
#include "framework/keepWindowPainted.h"

#include <QAbstractListModel>
#include <QPointer>

#include <algorithm>
#include <limits>

namespace quilvane {

/// The rows, and what the view has been told of them. Between a change and the next pass of the event loop
/// the two differ; the view then still counts the rows it knows.
class Listbox::Model : public QAbstractListModel {
public:
    ~Model() override { keepCopies(0); }

    const RowStore& rows() const { return m_rows; }

    /// For additions, of which the view is told later.
    RowStore& rowsToAddTo()
    {
        tellViewSoon();
        return m_rows;
    }

    /// For removals. The rows before `firstChanged` stay as they are. `move` must change a RowPlace as the
    /// caller will change the rows.
    template <typename Move>
    RowStore& rowsToChange(std::size_t firstChanged, Move move)
    {
        keepCopies(firstChanged);
        if (firstChanged < std::size_t(m_viewRows)) {
            if (!m_viewRowsChanged)
                m_place = m_view ? m_view->place() : RowPlace();
            m_viewRowsChanged = true;
            const std::size_t selectedBefore = m_place.selectedCount();
            move(m_place);
            if (m_place.selectedCount() != selectedBefore)
                m_selectionLost = true;
        }
        tellViewSoon();
        return m_rows;
    }

    /// To be called before rows from `firstChanged` on change: copied rows must keep their text.
    void keepCopies(std::size_t firstChanged)
    {
        for (const QPointer<CopiedRows>& copy : m_copies) {
            if (copy)
                copy->keep(firstChanged);
        }
    }

    QMimeData* copySelectedRows()
    {
        m_copies.removeAll(nullptr);
        m_copies.append(
            new CopiedRows(m_rows, m_viewRowsChanged ? m_place.selected : m_view->place().selected));
        return m_copies.back();
    }

    void show(RowView& view)
    {
        m_view = &view;
        view.setModel(this);
    }

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : m_viewRows; }

    QVariant data(const QModelIndex& index, int role) const override
    {
        const auto row = std::size_t(index.row());
        if (role != Qt::DisplayRole || row >= m_rows.size())
            return {};
        return toQt(m_rows[row]);
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        return QAbstractListModel::flags(index) | Qt::ItemIsDragEnabled;
    }

private:
    void tellViewSoon()
    {
        if (m_tellingPending)
            return;
        m_tellingPending = true;
        QMetaObject::invokeMethod(
            this, [this] { tellView(); }, Qt::QueuedConnection);
    }

    void tellView()
    {
        m_tellingPending = false;
        const int count = int(std::min<std::size_t>(m_rows.size(), std::numeric_limits<int>::max()));
        if (m_viewRowsChanged) {
            m_viewRowsChanged = false;
            beginResetModel();
            m_viewRows = count;
            endResetModel();
            if (!m_view)
                return;
            m_place.truncate(m_rows.size()); // a removal may have failed half-way
            m_view->restore(m_place);
            if (std::exchange(m_selectionLost, false))
                m_view->selectionMoved();
        } else if (count > m_viewRows) {
            beginInsertRows({}, m_viewRows, count - 1);
            m_viewRows = count;
            endInsertRows();
        }
    }

    RowStore m_rows;
    RowView* m_view = nullptr; // is deleted before the model
    QList<QPointer<CopiedRows>> m_copies; // some may have been deleted
    RowPlace m_place; // valid while m_viewRowsChanged: the view's place in the changed rows
    bool m_selectionLost = false;
    int m_viewRows = 0;
    bool m_viewRowsChanged = false;
    bool m_tellingPending = false;
};

Listbox::Listbox(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::Listbox)
    , m_model(std::make_unique<Model>())
{
}

Listbox::~Listbox()
{
    deleteWidget(); // before the model that it shows
}

void Listbox::AddRow(std::string_view text)
{
    constexpr std::size_t lookAtClockEvery = 4096; // rows
    m_model->rowsToAddTo().append(text);
    if (ListCount() % lookAtClockEvery == 0)
        keepWindowPainted();
}

void Listbox::AddRows(const RowStore& rows, std::size_t first)
{
    m_model->rowsToAddTo().append(rows, first);
}

void Listbox::TakeRows(RowStore&& rows)
{
    m_model->rowsToAddTo().take(std::move(rows));
}

std::size_t Listbox::ListCount() const
{
    return Rows().size();
}

std::string Listbox::Cell(std::size_t row, int column) const
{
    if (column != 0 && column != -1)
        throw OutOfBoundsException("list column", std::size_t(column), 1);
    return std::string(Row(row));
}

std::string_view Listbox::Row(std::size_t row) const
{
    if (row >= ListCount())
        throw OutOfBoundsException("list row", row, ListCount());
    return Rows()[row];
}

const RowStore& Listbox::Rows() const
{
    return m_model->rows();
}

void Listbox::DeleteAllRows()
{
    if (Rows().empty())
        return;
    ++m_arrangement;
    m_model->rowsToChange(0, [](RowPlace& place) { place = {}; }).clear();
}

void Listbox::TruncateRows(std::size_t count)
{
    if (count < ListCount())
        m_model->rowsToChange(count, [count](RowPlace& place) { place.truncate(count); }).truncate(count);
}

void Listbox::RetainRows(std::size_t first, std::span<const unsigned char> stays)
{
    const auto gone = std::find(stays.begin(), stays.end(), 0);
    if (gone == stays.end())
        return;
    const std::size_t firstChanged = first + std::size_t(gone - stays.begin());
    ++m_arrangement; // first, as what follows may fail half-way
    m_model->keepCopies(firstChanged);
    // The removal itself has no pause, and takes 100 ms for 5 million rows.
    constexpr std::size_t many = 1'000'000;
    constexpr long soon = 10; // ms
    if (stays.size() > many)
        keepWindowPainted(soon);
    Rows().requireMemoryToRetain(firstChanged); // before the selection moves
    m_model->rowsToChange(firstChanged, [&](RowPlace& place) { place.retain(first, stays); })
        .retain(first, stays);
}

void Listbox::ReplaceRows(RowStore&& rows)
{
    ++m_arrangement;
    RowStore& list = m_model->rowsToChange(0, [](RowPlace& place) { place = {}; });
    list.clear();
    list = std::move(rows);
}

void Listbox::makeWidget(Native& native)
{
    auto* view = new RowView(native.content);
    m_model->show(*view);
    view->selectionMoved = [this] { selectionMoved(); };
    view->selectedRows = [this] { return m_model->copySelectedRows(); };
    view->runDrag = [this](const std::function<void()>& drag) { fire("Drag", drag); };
    native.widget = view;
}

void Listbox::selectionMoved()
{
    if (!putOff(this, [this] { selectionMoved(); }))
        fire("Change", Change);
}

} // namespace quilvane
