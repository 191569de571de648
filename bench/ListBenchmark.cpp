// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Millions of rows added to the list, shown and scrolled to the end, compared with a list widget that has one
// item for each row.
#include "framework/Application.h"
#include "framework/Runtime.h"
#include "framework/controls/Listbox.h"
#include "framework/controls/MenuBar.h"
#include "framework/controls/Window.h"
#include "support/race.h"

#include <QApplication>
#include <QListWidget>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace quilvane;

constexpr int width = 316;
constexpr int height = 429;

class ListWindow : public Window {
public:
    Listbox list{ *this, "list" };

private:
    void Layout() override
    {
        setProperties({ .title = "List", .width = width, .height = height });
        constexpr ControlRow table[]
            = { { "list", ControlKind::Listbox, "", 0, 0, width, height, true, true, 0 } };
        place(table);
    }
};

std::vector<std::string> makeRows(std::size_t count)
{
    std::vector<std::string> rows;
    rows.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        rows.push_back("person." + std::to_string(i) + "@mail.example.org");
    return rows;
}

/// The list view that is visible now.
QListView& shownView()
{
    for (QWidget* widget : QApplication::allWidgets()) {
        if (auto* view = qobject_cast<QListView*>(widget); view && view->isVisible())
            return *view;
    }
    std::abort();
}

/// Paints the list at its start and at its end; returns the number of the first row that is then visible.
std::size_t showAndScroll(QListView& view)
{
    QApplication::processEvents();
    view.repaint();
    view.scrollToBottom();
    QApplication::processEvents();
    view.repaint();
    return std::size_t(view.indexAt(QPoint(5, 5)).row());
}

std::size_t inOurs(const std::vector<std::string>& rows)
{
    auto& window = openWindow<ListWindow>();
    for (const std::string& row : rows)
        window.list.AddRow(row);
    const std::size_t top = showAndScroll(shownView());
    window.Close();
    QApplication::processEvents();
    return top;
}

std::size_t inListWidget(const std::vector<std::string>& rows)
{
    QListWidget list;
    list.setUniformItemSizes(true);
    list.resize(width, height);
    list.show();
    for (const std::string& row : rows)
        list.addItem(QString::fromStdString(row));
    return showAndScroll(list);
}

} // namespace

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const Runtime runtime(argc, argv, "Quilvane");
    MenuBar noMenus;
    Application application;
    application.setMenuBar(noMenus);
    for (const std::size_t count : { std::size_t(1'000'000), std::size_t(5'000'000) }) {
        const std::vector<std::string> rows = makeRows(count);
        std::array contenders{
            Contender{ "Listbox", [&] { return inOurs(rows); } },
            Contender{ "QListWidget", [&] { return inListWidget(rows); } },
        };
        race(contenders, 3);
        const double ours = contenders[0].fastestSeconds;
        const double theirs = contenders[1].fastestSeconds;
        std::printf(
            "%zu rows added, shown, scrolled to the end: %.3f s, a list widget with an item a row %.3f s; "
            "ratio %.1f goal 20 %s\n",
            count, ours, theirs, theirs / ours, verdict(theirs >= 20 * ours));
        if (contenders[0].result + 100 < count || contenders[1].result + 100 < count)
            std::puts("  NOT AT THE END");
    }
    application.Quit();
    return EXIT_SUCCESS;
}
