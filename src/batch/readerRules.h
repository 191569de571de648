// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace quilvane {

enum class FileReader { PDF, Word, Delimited, Text };

/// A row of a table that chooses the readers of a file: `reader` reads it if `pattern`, a regular expression,
/// is found in the name.
struct ReaderRule {
    enum class Then { Stop, GoOn };

    const char* pattern;
    FileReader reader;
    Then then = Then::Stop; // GoOn: the rows below are tried, too
};

// Each way to reach a file has its own table. The order, the patterns and their dots are intended: a dot
// without a backslash stands for any character, so ".txt" finds mytxt.rtf as well.

/// Search File, by the whole name: notes.doc.txt is Word, archive.pdf.csv is PDF.
extern const std::span<const ReaderRule> searchFileReaders;
/// A dropped file, by the whole name. One that is Word and text is read both ways.
extern const std::span<const ReaderRule> droppedFileReaders;
/// The worker, by the last extension.
extern const std::span<const ReaderRule> workerReaders;
/// noThread, which nothing calls, by the last extension.
extern const std::span<const ReaderRule> noThreadReaders;
/// The walk below a folder, by the last extension. Old .doc files and PDF files are not read down there.
extern const std::span<const ReaderRule> walkReaders;

/// The readers of a file, in their order. `name` is its whole name or its last extension. Empty if no pattern
/// is found in it. Case is ignored.
std::vector<FileReader> readersFor(std::span<const ReaderRule> rules, std::string_view name);

} // namespace quilvane
