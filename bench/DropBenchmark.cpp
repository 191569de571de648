// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The time of drops of many items: files and folders dropped on the real window, compared with Search Folder
// on the same files, with fewer items, and, for one file, a long list with an empty one. The files are in the
// disk's cache.
#include "app/App.h"
#include "app/Window1.h"
#include "app/startUp.h"
#include "framework/Runtime.h"
#include "support/AnsweringDesktop.h"
#include "support/race.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace quilvane;
namespace fs = std::filesystem;
using Paths = std::vector<std::optional<std::string>>;

/// Writes a file with so many addresses, which are in no other file.
std::string writeFile(const fs::path& path, std::size_t addresses)
{
    static std::size_t number = 0;
    fs::create_directories(path.parent_path());
    std::ofstream file(path);
    for (; addresses > 0; --addresses)
        file << "Some Person <person" << ++number << "@mail.example.org>\n";
    return path;
}

double secondsOf(const std::function<void()>& work, const std::function<void()>& before)
{
    std::array contenders{ Contender{ "", [&] {
                                         work();
                                         return std::size_t(0);
                                     } } };
    race(contenders, 3, before);
    return contenders[0].fastestSeconds;
}

void emptyList()
{
    Window1& window = implicit<Window1>();
    window.clearBtn_Action();
    window.rCounter = 0;
}

double secondsOfDrop(const Paths& paths)
{
    return secondsOf([&] { implicit<Window1>().Canvas1.Drop(DragItem(paths)); }, emptyList);
}

double secondsOfSearch(const fs::path& folder)
{
    const AnsweringDesktop desktop(folder);
    return secondsOf([] { implicit<Window1>().importFolderBtn.Push(); }, emptyList);
}

void compareFiles(const fs::path& root)
{
    Paths paths;
    for (int i = 0; i < 4'000; ++i)
        paths.push_back(writeFile(root / "files" / (std::to_string(i) + ".txt"), 100));
    const double dropped = secondsOfDrop(paths);
    const double quarter = secondsOfDrop({ paths.begin(), paths.begin() + 1'000 });
    const double searched = secondsOfSearch(root / "files");
    std::printf(
        "drop of 4,000 files: %.3f s; by Search Folder %.2f goal 3 %s; by 1,000 files %.2f goal 4.8 %s\n",
        dropped, dropped / searched, verdict(dropped <= 3 * searched), dropped / quarter,
        verdict(dropped <= 4.8 * quarter));
}

void compareFolders(const fs::path& root)
{
    constexpr std::size_t folders = 200;
    constexpr std::size_t filesEach = 10;
    Paths paths;
    for (std::size_t i = 0; i < folders; ++i) {
        const fs::path folder = root / "folders" / std::to_string(i);
        for (std::size_t j = 0; j < filesEach; ++j)
            writeFile(folder / (std::to_string(j) + ".txt"), 100);
        paths.push_back(folder);
    }
    const double dropped = secondsOfDrop(paths);
    const double quarter = secondsOfDrop({ paths.begin(), paths.begin() + folders / 4 });
    const double searched = secondsOfSearch(root / "folders") / double(folders * filesEach);
    // The run of each folder reads the files of the earlier folders again.
    const double read = dropped / double(filesEach * folders * (folders + 1) / 2);
    std::printf(
        "drop of 200 folders of 10 files: %.3f s; by 50 folders %.2f goal 18 %s; a file read, by Search "
        "Folder %.2f goal 1.3 %s\n",
        dropped, dropped / quarter, verdict(dropped <= 18 * quarter), read / searched,
        verdict(read <= 1.3 * searched));
}

void compareLists(const fs::path& root)
{
    constexpr std::size_t rows = 5'000'000;
    const Paths one{ writeFile(root / "one.txt", 100) };
    const double empty = secondsOfDrop(one);
    emptyList();
    Window1& window = implicit<Window1>();
    for (std::size_t i = 0; i < rows; ++i)
        window.Listbox1.AddRow("row" + std::to_string(i) + "@example.org");
    window.checkDuplicates();
    int next = 0;
    const double full = secondsOf(
        [&] { window.Canvas1.Drop(DragItem({ writeFile(root / (std::to_string(next++) + ".txt"), 100) })); },
        [] {});
    std::printf("one file onto 5 M rows: %.2f ms; by the same onto an empty list %.2f goal 2 or 5 ms %s\n",
        full * 1e3, full / empty, verdict(full <= 2 * empty || full < 0.005));
}

} // namespace

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("XDG_DATA_HOME", fs::temp_directory_path().c_str(), 1);
    const Runtime runtime(argc, argv, "Quilvane");
    const std::unique_ptr<App> application = makeApp();
    const fs::path root = fs::temp_directory_path() / "quilvane-bench-drop";
    fs::remove_all(root);
    compareFiles(root);
    compareFolders(root);
    compareLists(root);
    fs::remove_all(root);
    application->Quit();
    return EXIT_SUCCESS;
}
