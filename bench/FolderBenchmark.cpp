// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Search Folder in the real window, over trees of small text files, compared with ripgrep over the same tree
// with duplicates removed: on one thread and on two with the files in the disk's cache, and on eight with
// none of them there (only root can empty the cache). Last, a folder with one large file, compared with
// Search File on that file.
#include "app/App.h"
#include "app/Window1.h"
#include "app/startUp.h"
#include "framework/Runtime.h"
#include "support/AnsweringDesktop.h"
#include "support/benchText.h"
#include "support/race.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

using namespace quilvane;

/// Files of 4 KB, text and delimited in turn, with an address in every other line; in subfolders, or all in
/// one.
void makeTree(const std::filesystem::path& root, std::size_t files, std::size_t folders)
{
    const std::string text = makeBenchText(BenchText::Contacts, 4096 * 64);
    for (std::size_t i = 0; i < files; ++i) {
        const std::filesystem::path folder
            = folders == 0 ? root : root / ("folder" + std::to_string(i % folders));
        std::filesystem::create_directories(folder);
        std::ofstream file(folder / ("file" + std::to_string(i) + (i % 2 ? ".txt" : ".csv")));
        file << text.substr(4096 * (i % 64), 4096) << " own" << i << "@example.org\n";
    }
}

std::size_t searchInWindow()
{
    Window1& window = implicit<Window1>();
    window.clearBtn_Action();
    window.rCounter = 0;
    window.importFolderBtn.Push();
    return window.Listbox1.ListCount();
}

/// Empties the system's cache of files. Returns false and does nothing without root's rights.
bool emptyDiskCache()
{
    ::sync(); // what is not yet written stays in the cache
    std::ofstream control("/proc/sys/vm/drop_caches");
    control << 3 << std::flush;
    return control.good();
}

void tellRatio(const char* what, const Contender& other, double ours, double goal)
{
    const double ratio = ours / other.fastestSeconds;
    std::printf("  %s: %.3f s by %.3f s, ratio %.2f goal %.2f %s\n", what, ours, other.fastestSeconds, ratio,
        goal, verdict(ratio <= goal));
}

enum class DiskCache { Full, FullAndEmpty };

/// Returns the seconds for each file, with all files in the disk's cache.
double compare(std::size_t files, std::size_t folders, DiskCache caches)
{
    const std::string root = std::filesystem::temp_directory_path() / "quilvane-bench-tree";
    std::filesystem::remove_all(root);
    makeTree(root, files, folders);
    AnsweringDesktop desktop(root);
    const std::string output = root + "-unique";
    const auto ripgrep = [&](int threads) {
        const std::string command = "LC_ALL=C rg --no-config -INaoi --no-unicode -j" + std::to_string(threads)
            + " '\\b[A-Z0-9._%+-]+@[A-Z0-9.-]+\\.[A-Z]{2,}\\b' " + root + " | mawk '!seen[tolower($0)]++' > "
            + output;
        return Contender{ "ripgrep", [command] { return std::size_t(std::system(command.c_str()) == 0); } };
    };
    std::array contenders{ Contender{ "Search Folder", searchInWindow }, ripgrep(1), ripgrep(2) };
    race(contenders, 3);
    const double ours = contenders[0].fastestSeconds;
    const double theirs = contenders[1].fastestSeconds;
    std::ifstream unique(output);
    const auto lines = std::size_t(
        std::count(std::istreambuf_iterator<char>(unique), std::istreambuf_iterator<char>(), '\n'));
    std::printf(
        "%6zu files in %3zu folders: %.3f s, %.1f us a file; ripgrep %.3f s; ratio %.2f goal 3 %s%s\n", files,
        folders, ours, ours / double(files) * 1e6, theirs, ours / theirs, verdict(ours <= 3 * theirs),
        contenders[0].result == lines ? "" : "; DIFFERENT RESULTS");
    tellRatio("the same by ripgrep on two threads", contenders[2], ours, 1.15);
    if (caches == DiskCache::FullAndEmpty && !emptyDiskCache()) {
        std::printf("  the disk's cache could not be emptied: root may, so the cold race was left out\n");
    } else if (caches == DiskCache::FullAndEmpty) {
        std::array cold{ Contender{ "Search Folder", searchInWindow }, ripgrep(8) };
        race(cold, 3, [] { emptyDiskCache(); });
        tellRatio("with no file in the disk's cache by ripgrep on eight threads", cold[1],
            cold[0].fastestSeconds, 1);
    }
    std::fflush(stdout);
    std::filesystem::remove_all(root);
    std::filesystem::remove(output);
    return ours / double(files);
}

/// In MB: the largest memory use of this process since forgetPeak().
double peakMemory()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "VmHWM:") { }
    double kilobytes = 0;
    status >> kilobytes;
    return kilobytes / 1024;
}

void forgetPeak()
{
    std::ofstream("/proc/self/clear_refs") << 5;
}

void compareLargeFile()
{
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "quilvane-bench-large";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    {
        // One long text and not a repeated one, so that most addresses are new.
        std::ofstream file(folder / "file.txt");
        file << makeBenchText(BenchText::Contacts, std::size_t(1) << 30);
    }
    AnsweringDesktop desktop(folder);
    double searchFilePeak = 0;
    double searchFolderPeak = 0;
    std::array contenders{ Contender{ "Search File",
                               [&] {
                                   forgetPeak();
                                   implicit<Window1>().importBtn1.Push();
                                   searchFilePeak = peakMemory();
                                   return implicit<Window1>().Listbox1.ListCount();
                               } },
        Contender{ "Search Folder", [&] {
                      forgetPeak();
                      implicit<Window1>().importFolderBtn.Push();
                      searchFolderPeak = peakMemory();
                      return implicit<Window1>().Listbox1.ListCount();
                  } } };
    race(contenders, 3, [] { implicit<Window1>().clearBtn_Action(); });
    const double times = contenders[1].fastestSeconds / contenders[0].fastestSeconds;
    const double memory = searchFolderPeak / searchFilePeak;
    std::printf(
        "one file of 1 GB, %zu rows: Search Folder %.2f s and %.0f MB; by Search File %.2f goal 1.2 %s "
        "and %.2f goal 1.2 %s%s\n",
        contenders[0].result, contenders[1].fastestSeconds, searchFolderPeak, times, verdict(times <= 1.2),
        memory, verdict(memory <= 1.2),
        contenders[0].result == contenders[1].result ? "" : "; DIFFERENT RESULTS");
    std::filesystem::remove_all(folder);
}

} // namespace

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("XDG_DATA_HOME", std::filesystem::temp_directory_path().c_str(), 1);
    const Runtime runtime(argc, argv, "Quilvane");
    const std::unique_ptr<App> application = makeApp();
    const double few = compare(2'000, 50, DiskCache::Full);
    compare(5'000, 0, DiskCache::FullAndEmpty);
    compare(20'000, 500, DiskCache::FullAndEmpty);
    compare(20'000, 0, DiskCache::FullAndEmpty);
    const double many = compare(100'000, 500, DiskCache::Full);
    std::printf("time a file, 100,000 files by 2,000: %.2f\n", many / few);
    compareLargeFile();
    application->Quit();
    return EXIT_SUCCESS;
}
