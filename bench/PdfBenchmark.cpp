// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The text of all pages of PDF files, read by the program's reader, compared with one run of pdftotext for
// each file; the last line is for all files together.
//   pdf_benchmark FILE...
#include "framework/documents/DynaPDFMBS.h"
#include "framework/files/FolderItem.h"
#include "support/race.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>

namespace {

using namespace quilvane;

int pageCount(const std::string& path)
{
    DynaPDFMBS engine;
    engine.OpenImportFile(*GetFolderItem(path));
    return engine.ImportPDFFile(1);
}

std::size_t textSize(const std::string& path)
{
    std::size_t size = 0;
    DynaPDFMBS engine;
    engine.OpenImportFile(*GetFolderItem(path));
    engine.ImportPDFFile(1);
    for (int page = 1; page <= engine.GetPageCount(); ++page)
        if (engine.EditPage(page))
            size += engine.ExtractPageText().size();
    return size;
}

std::size_t wholeRun(const std::string& command)
{
    if (std::system((command + " >/dev/null 2>&1").c_str()) != 0)
        throw std::runtime_error("This failed: " + command);
    return 0;
}

/// Seconds.
struct Times {
    double own = 0;
    double other = 0;
};

Times measure(const std::string& path)
{
    // For a short document the other program mostly needs time to start; the reader starts only once.
    constexpr double mostOfShort = 0.6;
    constexpr double mostOfLong = 1.1;
    constexpr int shortDocument = 10; // pages
    constexpr int rounds = 15;
    std::array contenders{
        Contender{ "own", [&] { return textSize(path); } },
        Contender{ "other", [&] { return wholeRun("pdftotext -raw '" + path + "' -"); } },
    };
    race(contenders, rounds);
    const Times times{ contenders[0].fastestSeconds, contenders[1].fastestSeconds };
    const double ratio = times.own / times.other;
    const double most = pageCount(path) <= shortDocument ? mostOfShort : mostOfLong;
    std::printf("%s: %.1f ms, %.2f of pdftotext's time (goal %.1f: %s)\n", path.c_str(), times.own * 1e3,
        ratio, most, verdict(ratio <= most));
    return times;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        Times all;
        for (int i = 1; i < argc; ++i) {
            const Times times = measure(argv[i]);
            all.own += times.own;
            all.other += times.other;
        }
        std::printf("all: %.1f ms, %.2f of pdftotext's time\n", all.own * 1e3, all.own / all.other);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
