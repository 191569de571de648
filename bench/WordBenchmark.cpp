// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The time to get the text of Word documents: in this process, compared with reading the file; as a whole run
// of a program, compared with docx2txt and catdoc; and by the program's reader, in a run over many. The goals
// for whole runs are for documents of some megabytes: with a short one, most of the time is the start of the
// program.
//   word_benchmark FILE...
#include "documents/documentText.h"
#include "framework/documents/WordFileMBS.h"
#include "framework/exceptions.h"
#include "framework/files/BinaryStream.h"
#include "framework/files/FolderItem.h"
#include "support/bytesOf.h"
#include "support/race.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

namespace {

using namespace quilvane;

/// By the program's reader, as one document of many.
std::size_t inReader(const std::string& path)
{
    const Ref<BinaryStream> file = BinaryStream::Open(*GetFolderItem(path));
    return WordFileMBS::OpenData(file->Read(file->Length()))->Text().size();
}

std::size_t wholeRun(const std::string& command)
{
    const int status = std::system((command + " >/dev/null 2>&1").c_str());
    if (status != 0)
        throw RuntimeException("This failed: " + command);
    return 0;
}

/// `printer` is the path of document_text.
void measure(const std::string& printer, const std::string& path)
{
    constexpr int rounds = 15;
    constexpr int documentsOfARun = 20;
    constexpr double mostInReader = 1.2; // milliseconds, of a small document
    const bool isPackage = path.ends_with("x");
    const std::string bytes = bytesOf(path);
    std::array inProcess{
        Contender{ "read", [&] { return bytesOf(path).size(); } },
        Contender{ "text", [&] { return documentText(bytes).value().size(); } },
        Contender{ "reader",
            [&] {
                for (int i = 1; i < documentsOfARun; ++i)
                    inReader(path);
                return inReader(path);
            } },
    };
    race(inProcess, rounds);
    const std::string file = " '" + path + "'";
    std::array whole{
        Contender{ "own", [&] { return wholeRun("'" + printer + "'" + file); } },
        Contender{
            "other", [&] { return wholeRun(isPackage ? "docx2txt" + file + " -" : "catdoc" + file); } },
    };
    race(whole, rounds);

    const double milliseconds = inProcess[1].fastestSeconds * 1e3;
    const double ratio = whole[0].fastestSeconds / whole[1].fastestSeconds;
    const double mostRatio = isPackage ? 0.5 : 1;
    std::printf("%s: %.3f ms, %.0f times reading the file; whole run %.2f of %s's time (goal %.1f: %s)\n",
        path.c_str(), milliseconds, inProcess[1].fastestSeconds / inProcess[0].fastestSeconds, ratio,
        isPackage ? "docx2txt" : "catdoc", mostRatio, verdict(ratio <= mostRatio));
    const double each = inProcess[2].fastestSeconds * 1e3 / documentsOfARun;
    std::printf("    in a run %.3f ms (goal for a small one %.1f: %s)\n", each, mostInReader,
        verdict(each <= mostInReader));
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const std::string printer = std::filesystem::path(argv[0]).replace_filename("document_text");
        for (int i = 1; i < argc; ++i)
            measure(printer, argv[i]);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
