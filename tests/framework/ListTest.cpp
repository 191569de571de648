// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/Application.h"
#include "framework/controls/Listbox.h"
#include "framework/controls/MenuBar.h"
#include "framework/controls/RowStore.h"
#include "framework/controls/Window.h"
#include "framework/exceptions.h"
#include "framework/internal/RowPlace.h"
#include "framework/internal/fitText.h"
#include "support/ScriptedDesktop.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>

#include <random>

namespace quilvane {

namespace {

class ListMenuBar : public MenuBar {
public:
    ListMenuBar()
    {
        MenuItem& menu = append(std::make_unique<MenuItem>("EditMenu", "&Edit"));
        for (const char* name : { "EditCut", "EditCopy", "EditPaste", "EditClear", "EditSelectAll" })
            menu.append(std::make_unique<MenuItem>(name, name));
    }
};

class ListWindow : public Window {
public:
    Listbox list{ *this, "list" };

private:
    void Layout() override
    {
        setProperties({ .title = "List", .width = 200, .height = 200 });
        constexpr ControlRow table[]
            = { { "list", ControlKind::Listbox, "", 0, 0, 200, 200, true, true, 0 } };
        place(table);
    }
};

QString clipboard()
{
    return QApplication::clipboard()->text();
}

class ListTest : public testing::Test {
protected:
    ListTest()
    {
        application.setMenuBar(menuBar);
        list().Change = [this] { ++changes; };
        for (QWidget* each : QApplication::allWidgets()) {
            if (each->objectName() == "list")
                m_view = qobject_cast<QListView*>(each);
        }
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_view));
        m_view->setFocus();
    }
    ~ListTest() override
    {
        application.Quit();
        Application::DoEvents(100);
    }

    static Listbox& list() { return implicit<ListWindow>().list; }
    QListView* view() const { return m_view; }

    /// Adds "row0", "row1" and so on, and lets the view learn of them.
    static void addRows(int count)
    {
        for (int i = 0; i < count; ++i)
            list().AddRow("row" + std::to_string(i));
        Application::DoEvents(100);
    }

    /// Their texts, in order.
    std::vector<std::string> selectedRows() const
    {
        QModelIndexList indexes = view()->selectionModel()->selectedIndexes();
        std::sort(indexes.begin(), indexes.end());
        std::vector<std::string> rows;
        for (const QModelIndex& index : indexes)
            rows.push_back(index.data().toString().toStdString());
        return rows;
    }

    void click(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        const QRect place = view()->visualRect(view()->model()->index(row, 0));
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, modifiers, place.center());
    }

    ListMenuBar menuBar;
    ScriptedDesktop desktop;
    Application application;
    int changes = 0;

private:
    QListView* m_view = nullptr;
};

using Rows = std::vector<std::string>;

} // namespace

TEST_F(ListTest, listTellsItsViewOncePerTurn)
{
    auto* view = this->view();
    int told = 0;
    QObject::connect(view->model(), &QAbstractItemModel::rowsInserted, [&] { ++told; });
    for (int i = 0; i < 100'000; ++i)
        list().AddRow("row" + std::to_string(i));
    EXPECT_EQ(view->model()->rowCount(), 0);
    Application::DoEvents(100);
    EXPECT_EQ(view->model()->rowCount(), 100'000);
    EXPECT_EQ(told, 1);

    QTest::keyClick(view, Qt::Key_End);
    EXPECT_EQ(view->currentIndex().data().toString(), "row99999");
    EXPECT_TRUE(view->viewport()->rect().contains(view->visualRect(view->currentIndex())));
    EXPECT_EQ(view->indexAt(view->visualRect(view->currentIndex()).center()), view->currentIndex());
}

TEST_F(ListTest, listKeepsTheRetainedRowsInOrder)
{
    // Across the borders of the store's chunks.
    std::vector<unsigned char> keep(10'000);
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < keep.size(); ++i) {
        list().AddRow(std::to_string(i));
        keep[i] = i % 3 == 0 || i > 9'000;
        if (keep[i])
            expected.push_back(std::to_string(i));
    }
    Application::DoEvents(100);
    auto* view = this->view();
    view->setCurrentIndex(view->model()->index(1, 0));
    EXPECT_EQ(changes, 1);

    list().RetainRows(0, keep);
    ASSERT_EQ(list().ListCount(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(list().Cell(i, -1), expected[i]);
    EXPECT_THROW(list().Cell(expected.size(), 0), OutOfBoundsException);
    Application::DoEvents(100);
    EXPECT_EQ(changes, 2) << "the selected row has gone";

    list().DeleteAllRows();
    list().AddRow("");
    EXPECT_EQ(list().Cell(0, 0), "");
}

TEST_F(ListTest, removingRowsThatTheViewDoesNotKnowKeepsTheSelection)
{
    Listbox& list = this->list();
    const auto add = [&list](int count) {
        while (count-- > 0)
            list.AddRow("row");
    };
    auto* view = this->view();
    add(10);
    Application::DoEvents(100);
    view->setCurrentIndex(view->model()->index(9, 0));
    const std::uint64_t arrangement = list.Arrangement();
    add(10);
    list.TruncateRows(11);
    EXPECT_EQ(list.Arrangement(), arrangement);
    list.RetainRows(10, std::vector<unsigned char>{ 0 });
    add(3);
    EXPECT_NE(list.Arrangement(), arrangement);
    Application::DoEvents(100);
    EXPECT_EQ(view->model()->rowCount(), 13);
    EXPECT_TRUE(view->selectionModel()->hasSelection());

    const std::pair<const char*, std::function<void()>> removals[] = {
        { "the selected row", [&] { list.RetainRows(0, std::vector<unsigned char>(13, 0)); } },
        { "truncated", [&] { list.TruncateRows(0); } },
        { "other rows", [&] { list.ReplaceRows({}); } },
    };
    for (const auto& [name, remove] : removals) {
        view->setCurrentIndex(view->model()->index(0, 0));
        remove();
        add(13);
        Application::DoEvents(100);
        EXPECT_EQ(view->model()->rowCount(), int(list.ListCount())) << name;
        EXPECT_FALSE(view->selectionModel()->hasSelection()) << name;
    }
}
TEST_F(ListTest, severalRowsAreSelectedAndCopiedAsLines)
{
    addRows(8);
    const auto commands = [this] {
        EnableMenuItems();
        std::string live;
        for (const char* name : { "EditCut", "EditCopy", "EditPaste", "EditClear", "EditSelectAll" })
            live += menuBar.Lookup(name).Enabled() ? name + std::string(" ") : "";
        return live;
    };
    EXPECT_EQ(commands(), "EditSelectAll ");
    click(1);
    click(3, Qt::ShiftModifier);
    click(6, Qt::ControlModifier);
    QTest::keyClick(view(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(selectedRows(), (Rows{ "row1", "row2", "row3", "row6", "row7" }));
    click(4);
    click(2, Qt::ShiftModifier);
    EXPECT_EQ(selectedRows(), (Rows{ "row2", "row3", "row4" })) << "upwards, too";
    click(6, Qt::ControlModifier);
    click(3, Qt::ControlModifier);
    EXPECT_EQ(commands(), "EditCopy EditSelectAll ");
    QTest::keyClick(view(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), "row2\nrow4\nrow6");

    changes = 0;
    QTest::keyClick(view(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(selectedRows().size(), 8U);

    click(4);
    menuBar.Lookup("EditSelectAll").Choose();
    menuBar.Lookup("EditCopy").Choose();
    EXPECT_EQ(clipboard().count('\n'), 7);
}

TEST_F(ListTest, theMenuKeyShowsTheCommandsOfTheList)
{
    addRows(3);
    click(1);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(view(), &byKey);
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
    const std::pair<const char*, std::function<void()>> changesOfTheList[] = {
        { "nothing", [] {} },
        { "more rows", [] { addRows(3); } },
        { "later rows go", [] { list().TruncateRows(3); } },
        { "a copied row goes",
            [] {
                list().RetainRows(0, std::vector<unsigned char>{ 1, 0, 1, 1, 1 });
            } },
        { "other rows", [] { list().ReplaceRows({}); } },
        { "another selection", [this] { click(0); } },
        { "another copy of the same", [this] { QTest::keyClick(view(), Qt::Key_C, Qt::ControlModifier); } },
        { "the window closes",
            [this] {
                implicit<ListWindow>().Close();
                WindowList::instance().deleteClosed();
            } },
    };
    for (const auto& [name, change] : changesOfTheList) {
        list().DeleteAllRows();
        addRows(5);
        click(1);
        click(2, Qt::ControlModifier);
        QTest::keyClick(view(), Qt::Key_C, Qt::ControlModifier);
        change();
        EXPECT_EQ(clipboard(), "row1\nrow2") << name;
        EXPECT_EQ(QApplication::clipboard()->mimeData()->data("text/plain"), "row1\nrow2") << name;
    }
}

TEST_F(ListTest, selectionAndPlaceStayWithTheirRows)
{
    addRows(100);
    const int inSight = view()->indexAt({ 0, view()->viewport()->height() - 1 }).row();
    view()->verticalScrollBar()->setValue(50);
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
    EXPECT_EQ(view()->currentIndex().data().toString(), "row57");
    EXPECT_EQ(view()->indexAt({ 0, 0 }).data().toString(), "row50");
    EXPECT_EQ(changes, 0) << "no other rows are selected than before";
    EXPECT_LT(inSight, 40) << "or nothing is scrolled here";

    stays.assign(list().ListCount(), 1);
    stays[26] = 0; // row 57, which has the focus: the next row gets it
    list().RetainRows(0, stays);
    Application::DoEvents(100);
    EXPECT_EQ(selectedRows(), Rows{ "row55" });
    EXPECT_EQ(view()->currentIndex().data().toString(), "row58");
    EXPECT_EQ(changes, 1);
}

TEST(RowPlaceTest, movesAsTheRowsDo)
{
    std::mt19937 random(1);
    const auto below = [&random](std::size_t count) { return random() % count; };
    for (int round = 0; round < 3000; ++round) {
        const std::size_t count = 1 + below(30);
        std::vector<bool> selected(count);
        RowPlace place;
        for (std::size_t i = 0; i < count; ++i) {
            selected[i] = below(2) == 0;
            if (!selected[i])
                continue;
            if (i > 0 && selected[i - 1])
                ++place.selected.back().end;
            else
                place.selected.push_back({ i, i + 1 });
        }
        place.current = below(count);
        place.top = below(count);

        const std::size_t first = below(count + 1);
        std::vector<unsigned char> stays(count - first);
        std::vector<bool> expected(selected.begin(), selected.begin() + std::ptrdiff_t(first));
        std::size_t current = std::min(place.current, first);
        std::size_t top = std::min(place.top, first);
        for (std::size_t i = first; i < count; ++i) {
            stays[i - first] = below(3) == 0 ? 0 : static_cast<unsigned char>(1 + below(2));
            if (stays[i - first] == 0)
                continue;
            expected.push_back(selected[i]);
            current += i < place.current;
            top += i < place.top;
        }
        place.retain(first, stays);
        std::vector<bool> found(expected.size());
        for (std::size_t i = 0; i < place.selected.size(); ++i) {
            const RowRange range = place.selected[i];
            ASSERT_LT(range.first, range.end);
            ASSERT_LE(range.end, found.size());
            ASSERT_TRUE(i == 0 || place.selected[i - 1].end < range.first);
            std::fill(
                found.begin() + std::ptrdiff_t(range.first), found.begin() + std::ptrdiff_t(range.end), true);
        }
        ASSERT_EQ(found, expected) << "round " << round;
        ASSERT_EQ(place.current, current) << "round " << round;
        ASSERT_EQ(place.top, top) << "round " << round;
    }
}

TEST_F(ListTest, aLongRowShowsItsDomainAndATooltipShowsAll)
{
    const std::string local(100, 'l');
    const std::string longDomain = "@" + std::string(100, 'd') + ".org";
    list().AddRow("short@example.org");
    list().AddRow(local + "@mail.example.org");
    list().AddRow("a" + longDomain);
    Application::DoEvents(100);
    const QFontMetrics metrics = view()->fontMetrics();
    const int width = 190;
    const auto shown = [&](int row) {
        const QString text
            = shortenedAddress(view()->model()->index(row, 0).data().toString(), metrics, width);
        EXPECT_LE(metrics.horizontalAdvance(text), width);
        return text;
    };
    EXPECT_EQ(shown(0), "short@example.org");
    EXPECT_TRUE(shown(1).startsWith("ll") && shown(1).endsWith("@mail.example.org"));
    EXPECT_TRUE(shown(2).startsWith("a@d") && shown(2).endsWith("d.org"));
    EXPECT_LT(shortenedAddress(QString(5'000'000, 'x'), metrics, width).size(), 100);

    const auto tooltipOf = [&](int row) {
        const QPoint place = view()->visualRect(view()->model()->index(row, 0)).center();
        QHelpEvent event(QEvent::ToolTip, place, view()->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(view()->viewport(), &event);
        return QToolTip::text().remove(QChar(0x200b)).toStdString();
    };
    EXPECT_NE(tooltipOf(1).find(local + "@mail.example.org"), std::string::npos);
    EXPECT_NE(tooltipOf(2).find("a" + longDomain), std::string::npos);
    QToolTip::hideText();
}

} // namespace quilvane
