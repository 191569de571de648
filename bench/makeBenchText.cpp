// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Writes one of the texts of the benchmarks to standard output, for comparisons with other programs.
#include "support/benchText.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv)
{
    const auto kind = argc == 3 ? quilvane::benchTextNamed(argv[1]) : std::nullopt;
    const unsigned long megabytes = argc == 3 ? std::strtoul(argv[2], nullptr, 10) : 0;
    if (!kind || megabytes == 0) {
        std::fputs("usage: make_bench_text prose|contacts|dots|ats|labels|runs MEGABYTES > FILE\n", stderr);
        return 2;
    }
    const std::string text = quilvane::makeBenchText(*kind, megabytes << 20);
    const bool isWritten
        = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!isWritten)
        std::perror("make_bench_text");
    return isWritten ? 0 : 1;
}
