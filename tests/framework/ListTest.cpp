// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/WindowTest.h"

#include "framework/controls/RowStore.h"
#include "framework/exceptions.h"
#include "framework/internal/RowPlace.h"
#include "framework/internal/fitText.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QToolTip>

#include <random>

namespace quilvane {

namespace {

using Rows = std::vector<std::string>;

QString clipboard()
{
    return QApplication::clipboard()->text();
}

class ListTest : public WindowTest {
protected:
    ListTest()
    {
        list().Change = [this] { ++changes; };
        view->setFocus();
    }

    static Listbox& list() { return implicit<TestWindow>().list; }

    /// Adds "row0", "row1" and so on. The view does not know them before the next turn of the event loop.
    static void addRows(int count)
    {
        for (int i = 0; i < count; ++i)
            list().AddRow("row" + std::to_string(i));
    }

    static void addShownRows(int count)
    {
        addRows(count);
        Application::DoEvents(100);
    }

    /// Their texts, in order.
    Rows selectedRows() const
    {
        QModelIndexList indexes = view->selectionModel()->selectedIndexes();
        std::sort(indexes.begin(), indexes.end());
        Rows rows;
        for (const QModelIndex& index : indexes)
            rows.push_back(index.data().toString().toStdString());
        return rows;
    }

    QPoint middleOf(int row) const { return view->visualRect(view->model()->index(row, 0)).center(); }

    void click(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, middleOf(row));
    }

    void pressCopyKeys() const { QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier); }

    int changes = 0;
    QListView* const view = widget<QListView>("list");
};

bool isSelected(const RowPlace& place, std::size_t row)
{
    return std::any_of(place.selected.begin(), place.selected.end(),
        [row](const RowRange& range) { return range.first <= row && row < range.end; });
}

} // namespace

TEST_F(ListTest, listTellsItsViewOncePerTurn)
{
    int told = 0;
    QObject::connect(view->model(), &QAbstractItemModel::rowsInserted, [&] { ++told; });
    addShownRows(4'000); // with more of them at once a slow machine paints meanwhile
    EXPECT_EQ(told, 1);
    addShownRows(96'000);
    EXPECT_EQ(view->model()->rowCount(), 100'000);

    QTest::keyClick(view, Qt::Key_End);
    EXPECT_EQ(view->currentIndex().data().toString(), "row95999");
    EXPECT_TRUE(view->viewport()->rect().contains(view->visualRect(view->currentIndex())));
    EXPECT_EQ(view->indexAt(middleOf(99'999)), view->currentIndex());
}

TEST_F(ListTest, removingRowsThatTheViewDoesNotKnowKeepsTheSelection)
{
    addShownRows(10);
    view->setCurrentIndex(view->model()->index(9, 0));
    const std::uint64_t arrangement = list().Arrangement();
    addRows(10);
    list().TruncateRows(11);
    EXPECT_EQ(list().Arrangement(), arrangement);
    list().RetainRows(10, std::vector<unsigned char>{ 0 });
    addShownRows(3);
    EXPECT_NE(list().Arrangement(), arrangement);
    EXPECT_EQ(view->model()->rowCount(), 13);
    EXPECT_THROW(list().Cell(13, 0), OutOfBoundsException);
    EXPECT_TRUE(view->selectionModel()->hasSelection());

    const std::pair<const char*, std::function<void()>> removals[] = {
        { "the selected row", [] { list().RetainRows(0, std::vector<unsigned char>(13, 0)); } },
        { "truncated", [] { list().TruncateRows(0); } },
        { "other rows", [] { list().ReplaceRows({}); } },
    };
    for (const auto& [name, remove] : removals) {
        view->setCurrentIndex(view->model()->index(0, 0));
        remove();
        addShownRows(13);
        EXPECT_EQ(view->model()->rowCount(), int(list().ListCount())) << name;
        EXPECT_FALSE(view->selectionModel()->hasSelection()) << name;
    }
}

TEST_F(ListTest, severalRowsAreSelectedAndCopiedAsLines)
{
    addShownRows(8);
    const auto commands = [this] {
        EnableMenuItems();
        std::string live;
        for (const char* name : editCommandNames)
            live += menuBar.Lookup(name).Enabled() ? name + std::string(" ") : "";
        return live;
    };
    EXPECT_EQ(commands(), "EditSelectAll ");
    click(1);
    click(3, Qt::ShiftModifier);
    click(6, Qt::ControlModifier);
    QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(selectedRows(), (Rows{ "row1", "row2", "row3", "row6", "row7" }));
    click(4);
    click(2, Qt::ShiftModifier);
    EXPECT_EQ(selectedRows(), (Rows{ "row2", "row3", "row4" })) << "upwards, too";
    click(6, Qt::ControlModifier);
    click(3, Qt::ControlModifier);
    EXPECT_EQ(commands(), "EditCopy EditSelectAll ");
    pressCopyKeys();
    EXPECT_EQ(clipboard(), "row2\nrow4\nrow6");

    changes = 0;
    QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(selectedRows().size(), 8U);

    click(4);
    menuBar.Lookup("EditSelectAll").Choose();
    menuBar.Lookup("EditCopy").Choose();
    EXPECT_EQ(clipboard().count('\n'), 7);
}

TEST_F(ListTest, theMenuKeyShowsTheCommandsOfTheList)
{
    addShownRows(3);
    click(1);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(view, &byKey);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    std::string live;
    for (const QAction* action : menu->actions())
        live += action->isEnabled() ? action->objectName().toStdString() + " " : "";
    EXPECT_EQ(live, "EditCopy EditSelectAll ");
    menu->actions().last()->trigger();
    menu->actions().first()->trigger();
    EXPECT_EQ(clipboard(), "row0\nrow1\nrow2");
    menu->close();
}

TEST_F(ListTest, copiedRowsDoNotChangeWithTheList)
{
    static const std::vector<unsigned char> thirdRowGoes{ 1, 1, 0, 1, 1 };
    const std::pair<const char*, std::function<void()>> changesOfTheList[] = {
        { "nothing", [] {} },
        { "more rows", [] { addShownRows(3); } },
        { "later rows go", [] { list().TruncateRows(3); } },
        { "a copied row goes", [] { list().RetainRows(0, thirdRowGoes); } },
        { "other rows", [] { list().ReplaceRows({}); } },
        { "another selection", [this] { click(0); } },
        { "another copy of the same", [this] { pressCopyKeys(); } },
        { "the window closes",
            [this] {
                implicit<TestWindow>().Close();
                WindowList::instance().deleteClosed();
            } },
    };
    for (const auto& [name, change] : changesOfTheList) {
        list().DeleteAllRows();
        addShownRows(5);
        click(1);
        click(2, Qt::ControlModifier);
        pressCopyKeys();
        change();
        EXPECT_EQ(clipboard(), "row1\nrow2") << name;
        EXPECT_EQ(QApplication::clipboard()->mimeData()->data("text/plain"), "row1\nrow2") << name;
    }
}

TEST_F(ListTest, selectionAndPlaceStayWithTheirRows)
{
    addShownRows(100);
    const int inSight = view->indexAt({ 0, view->viewport()->height() - 1 }).row();
    view->verticalScrollBar()->setValue(50);
    click(55);
    click(57, Qt::ControlModifier);
    changes = 0;

    // Two removals before the view is told: rows 0 to 9 and 56, then every other one of the first forty.
    std::vector<unsigned char> stays(100, 1);
    std::fill_n(stays.begin(), 10, 0);
    stays[56] = 0;
    list().RetainRows(0, stays);
    stays.assign(89, 1);
    for (std::size_t i = 0; i < 40; i += 2)
        stays[i] = 0;
    list().RetainRows(0, stays);
    list().AddRow("new");
    Application::DoEvents(100);
    EXPECT_EQ(selectedRows(), (Rows{ "row55", "row57" }));
    EXPECT_EQ(view->currentIndex().data().toString(), "row57");
    EXPECT_EQ(view->indexAt({ 0, 0 }).data().toString(), "row50");
    EXPECT_EQ(changes, 0) << "no other rows are selected than before";
    EXPECT_LT(inSight, 40) << "or nothing is scrolled here";

    stays.assign(list().ListCount(), 1);
    stays[26] = 0; // row 57, which has the focus: the next row gets it
    list().RetainRows(0, stays);
    Application::DoEvents(100);
    EXPECT_EQ(selectedRows(), Rows{ "row55" });
    EXPECT_EQ(view->currentIndex().data().toString(), "row58");
    EXPECT_EQ(changes, 1);
}

TEST(RowPlaceTest, movesAsTheRowsDo)
{
    std::mt19937 random(1);
    const auto below = [&random](std::size_t count) { return random() % count; };
    for (int round = 0; round < 3000; ++round) {
        const std::size_t count = 1 + below(30);
        RowPlace before;
        for (std::size_t row = below(3); row < count; row += 1 + below(3)) {
            const std::size_t begin = row;
            row += 1 + below(3);
            before.selected.push_back({ begin, std::min(row, count) });
        }
        before.current = below(count);
        before.top = below(count);
        const std::size_t first = below(count + 1);
        std::vector<unsigned char> stays(count - first);
        for (unsigned char& stay : stays)
            stay = below(3) == 0 ? 0 : static_cast<unsigned char>(1 + below(2));

        RowPlace after = before;
        after.retain(first, stays);
        std::size_t row = 0; // of those after the removal
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_TRUE(i != before.current || after.current == row) << round;
            ASSERT_TRUE(i != before.top || after.top == row) << round;
            if (i >= first && stays[i - first] == 0)
                continue;
            ASSERT_EQ(isSelected(after, row), isSelected(before, i)) << round;
            ++row;
        }
        std::size_t end = 0;
        for (const RowRange& range : after.selected) {
            ASSERT_TRUE(range.first > end || range.first == 0) << "two ranges touch in round " << round;
            ASSERT_LT(range.first, range.end) << round;
            end = range.end;
        }
        ASSERT_LE(end, row) << round;
    }
}

TEST_F(ListTest, aLongRowShowsItsDomainAndATooltipShowsAll)
{
    const std::string longPart(100, 'l');
    const std::string addresses[]
        = { "short@example.org", longPart + "@mail.example.org", "a@" + longPart + ".org" };
    for (const std::string& address : addresses)
        list().AddRow(address);
    Application::DoEvents(100);
    const QFontMetrics metrics = view->fontMetrics();
    const int width = 190;
    const auto shown = [&](int row) {
        const QString text = shortenedAddress(QString::fromStdString(addresses[row]), metrics, width);
        EXPECT_LE(metrics.horizontalAdvance(text), width);
        return text;
    };
    EXPECT_EQ(shown(0), "short@example.org");
    EXPECT_TRUE(shown(1).startsWith("ll") && shown(1).endsWith("@mail.example.org"));
    EXPECT_TRUE(shown(2).startsWith("a@l") && shown(2).endsWith("l.org"));
    EXPECT_LT(shortenedAddress(QString(5'000'000, 'x'), metrics, width).size(), 100);

    for (const int row : { 1, 2 }) {
        QHelpEvent event(QEvent::ToolTip, middleOf(row), view->viewport()->mapToGlobal(middleOf(row)));
        QCoreApplication::sendEvent(view->viewport(), &event);
        const QString tooltip = QToolTip::text().remove(QChar(0x200b));
        EXPECT_NE(tooltip.toStdString().find(addresses[row]), std::string::npos);
    }
    QToolTip::hideText();
}

} // namespace quilvane
