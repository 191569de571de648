// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// How long the window does not react while a handler works: the longest gap between two turns of the event
// loop, counting turns that only paint. Arguments name the cases to run: folder, large, drop, pdf, rows.
#include "app/App.h"
#include "app/Window1.h"
#include "app/startUp.h"
#include "filter/filterWIn.h"
#include "framework/Application.h"
#include "framework/Runtime.h"
#include "search/Window2.h"
#include "search/searchWin.h"
#include "support/AnsweringDesktop.h"
#include "support/benchText.h"
#include "support/race.h"
#include "support/slowFiles.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMimeData>
#include <QTimer>

namespace {

using namespace quilvane;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

constexpr double longestGap = 0.150; // s; the goal
constexpr std::size_t files = 2'000;
constexpr std::size_t documents = 500;
constexpr std::size_t rows = 5'000'000;
constexpr std::size_t largeFile = std::size_t(1) << 30; // bytes
constexpr std::size_t diskSpeed = 100'000'000; // bytes a second

/// Measures the time between turns: its own timer fires in each turn, and each painting counts as one.
class TurnWatch : public QObject {
public:
    TurnWatch()
    {
        constexpr int period = 10; // ms
        connect(&m_timer, &QTimer::timeout, this, &TurnWatch::turned);
        m_timer.start(period);
        qApp->installEventFilter(this);
    }

    void start()
    {
        m_last = Clock::now();
        m_longest = {};
    }
    /// In seconds, since start().
    double longest()
    {
        turned();
        return m_longest.count();
    }

private:
    void turned()
    {
        const Clock::time_point now = Clock::now();
        m_longest = std::max<std::chrono::duration<double>>(m_longest, now - m_last);
        m_last = now;
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            turned();
        return false;
    }

    QTimer m_timer;
    Clock::time_point m_last;
    std::chrono::duration<double> m_longest{};
};

void measure(TurnWatch& watch, const char* name, const std::function<void()>& press)
{
    Application::DoEvents(1000);
    watch.start();
    const Clock::time_point start = Clock::now();
    press();
    const std::chrono::duration<double> took = Clock::now() - start;
    Application::DoEvents(1000); // the list is shown
    const double gap = watch.longest();
    std::printf("%-40s %7.2f s, longest gap %5.0f ms goal %.0f %s; %zu rows\n", name, took.count(), gap * 1e3,
        longestGap * 1e3, verdict(gap <= longestGap), implicit<Window1>().Listbox1.ListCount());
    std::fflush(stdout);
}

/// Makes small files in the empty `folder`, of a hundred addresses each, most of which are in no other file.
std::vector<std::optional<std::string>> makeFiles(const fs::path& folder)
{
    std::vector<std::optional<std::string>> paths;
    for (std::size_t i = 0; i < files; ++i) {
        paths.emplace_back(folder / ("file" + std::to_string(i) + (i % 2 ? ".txt" : ".csv")));
        std::ofstream file(*paths.back());
        for (std::size_t j = 0; j < 100; ++j)
            file << "somebody" << j * (i + 1) << "@example.org\n";
    }
    return paths;
}

void searchSlowFolder(TurnWatch& watch, const fs::path& folder)
{
    makeFiles(folder);
    const SlowFiles slow(folder, std::chrono::milliseconds(10), 0);
    measure(
        watch, "Search Folder, files that open slowly", [] { implicit<Window1>().importFolderBtn.Push(); });
}

void searchLargeFile(TurnWatch& watch, const fs::path& folder)
{
    constexpr std::size_t piece = std::size_t(1) << 26;
    const std::string text = makeBenchText(BenchText::Prose, piece);
    std::ofstream file(folder / "file.txt");
    for (std::size_t written = 0; written < largeFile; written += piece)
        file << text;
    file.close();
    const SlowFiles slow(folder, {}, diskSpeed);
    measure(watch, "Search File, 1 GB at 100 MB/s", [] { implicit<Window1>().importBtn1.Push(); });
}

void dropFiles(TurnWatch& watch, const fs::path& folder)
{
    const DragItem item(makeFiles(folder));
    measure(watch, "files dropped", [&] { implicit<Window1>().Canvas1.Drop(item); });
}

void dropDocuments(TurnWatch& watch, const fs::path& folder)
{
    std::vector<std::optional<std::string>> paths;
    for (std::size_t i = 0; i < documents; ++i) {
        paths.emplace_back(folder / ("flyer" + std::to_string(i) + ".pdf"));
        fs::copy_file(QUILVANE_SAMPLES "/flyer.pdf", *paths.back());
    }
    measure(watch, "PDF files dropped", [&] { implicit<Window1>().Canvas1.Drop(DragItem(paths)); });
}

void copyAll(TurnWatch& watch)
{
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        auto* list = window->findChild<QAbstractItemView*>("Listbox1");
        if (!list || std::size_t(list->model()->rowCount()) != rows)
            continue;
        measure(watch, "Select All", [list] { list->selectAll(); });
        measure(watch, "Copy", [list] {
            QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
            QApplication::sendEvent(list, &copy);
        });
        measure(watch, "Copy's text is asked for", [] {
            if (QApplication::clipboard()->mimeData()->data("text/plain").size() < qsizetype(rows))
                std::printf("NOT COPIED\n");
        });
    }
}

void workOnRows(TurnWatch& watch, const fs::path& folder)
{
    std::ofstream file(folder / "file.txt");
    for (std::size_t i = 0; i < rows; ++i)
        file << "somebody" << i << "@host" << i % 1000 << ".example." << (i % 3 == 0 ? "net" : "org") << '\n';
    file.close();
    measure(watch, "Search File, all addresses new", [] { implicit<Window1>().importBtn1.Push(); });
    for (const char* keyword : { "1@host7", "1@host7|2@host3" }) {
        implicit<searchWin>().searchField.setText(keyword);
        measure(watch, "keyword search", [] { implicit<searchWin>().searchBtn.Push(); });
    }
    measure(watch, "export", [] { implicit<Window1>().exportBtn.Push(); });
    copyAll(watch);
    implicit<filterWIn>().checkNet.setValue(true);
    measure(watch, "Remove", [] { implicit<filterWIn>().removeBtn.Push(); });
    implicit<filterWIn>().checkNet.setValue(false);
    implicit<filterWIn>().checkOrg.setValue(true);
    measure(watch, "Keep", [] { implicit<filterWIn>().keepBtn.Push(); });
    const DragItem item({ folder });
    measure(watch, "folder dropped onto the rest", [&] { implicit<Window1>().Canvas1.Drop(item); });
    measure(watch, "Clear List", [] { implicit<Window1>().clearBtn.Push(); });
}

struct Case {
    std::string_view name;
    void (*run)(TurnWatch& watch, const fs::path& folder);
};

constexpr Case cases[] = {
    { "folder", searchSlowFolder },
    { "large", searchLargeFile },
    { "drop", dropFiles },
    { "pdf", dropDocuments },
    { "rows", workOnRows },
};

} // namespace

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("XDG_DATA_HOME", fs::temp_directory_path().c_str(), 1);
    const Runtime runtime(argc, argv, "Quilvane");
    const std::unique_ptr<App> application = makeApp();
    const fs::path folder = fs::temp_directory_path() / "quilvane-bench-gaps";
    AnsweringDesktop desktop(folder);
    TurnWatch watch;
    const std::span names(argv + 1, std::size_t(argc - 1));
    for (const Case& each : cases) {
        if (!names.empty() && std::find(names.begin(), names.end(), each.name) == names.end())
            continue;
        fs::remove_all(folder);
        fs::create_directories(folder);
        each.run(watch, folder);
        implicit<Window1>().clearBtn_Action();
    }
    fs::remove_all(folder);
    application->Quit();
    return EXIT_SUCCESS;
}
