// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/readerRules.h"

#include "batch/runRules.h"

#include <array>

namespace quilvane {

namespace {

using enum FileReader;
constexpr auto goOn = ReaderRule::Then::GoOn;

// clang-format off
constexpr std::array searchFile{
    ReaderRule{ "\\.pdf", PDF },
    ReaderRule{ "\\.doc", Word }, // .docx as well
    ReaderRule{ "\\.csv", Delimited },
    ReaderRule{ "\\.txt", Text },
};
constexpr std::array droppedFile{
    ReaderRule{ ".csv", Delimited },
    ReaderRule{ ".pdf", PDF },
    ReaderRule{ ".doc", Word, goOn },
    ReaderRule{ ".txt", Text },
};
constexpr std::array worker{
    ReaderRule{ "\\.doc", Word }, // .docx as well
    ReaderRule{ "\\.pdf", PDF },
    ReaderRule{ "\\.txt", Text },
    ReaderRule{ "\\.csv", Delimited },
};
constexpr std::array noThread{
    ReaderRule{ ".doc", Word },
    ReaderRule{ ".txt", Text },
    ReaderRule{ ".csv", Delimited },
};
constexpr std::array walk{
    ReaderRule{ ".txt", Text, goOn },
    ReaderRule{ ".docx", Word },
    ReaderRule{ ".csv", Delimited },
};
// clang-format on

} // namespace

constexpr std::span<const ReaderRule> searchFileReaders = searchFile;
constexpr std::span<const ReaderRule> droppedFileReaders = droppedFile;
constexpr std::span<const ReaderRule> workerReaders = worker;
constexpr std::span<const ReaderRule> noThreadReaders = noThread;
constexpr std::span<const ReaderRule> walkReaders = walk;

std::vector<FileReader> readersFor(std::span<const ReaderRule> rules, std::string_view name)
{
    std::vector<FileReader> readers;
    for (const ReaderRule& rule : rules) {
        if (!nameHas(rule.pattern, name))
            continue;
        readers.push_back(rule.reader);
        if (rule.then == ReaderRule::Then::Stop)
            break;
    }
    return readers;
}

} // namespace quilvane
