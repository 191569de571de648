// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace quilvane {

enum class FileReader { PDF, Word, Delimited, Text };

/// A line of a table that tells what reads a file: `reader` does if `pattern`, a regular expression, is found
/// in the name.
struct ReaderRule {
    enum class Then { Stop, GoOn };

    const char* pattern;
    FileReader reader;
    Then then = Then::Stop; // or the lines below get a look at the name, too
};

// Each way to a file has a table of its own. Order, patterns and their dots are wanted as they are: a dot
// without a backslash stands for any character, so ".txt" finds mytxt.rtf as well.

/// Search File, by the whole name: notes.doc.txt is Word, archive.pdf.csv is PDF.
extern const std::span<const ReaderRule> searchFileReaders;
/// A dropped file, by the whole name. One that is Word and text is read both ways.
extern const std::span<const ReaderRule> droppedFileReaders;
/// The worker, by the last extension.
extern const std::span<const ReaderRule> workerReaders;
/// The worker's form for the handler itself, which nothing calls, by the last extension.
extern const std::span<const ReaderRule> noThreadReaders;
/// The walk below a folder, by the last extension. Old .doc files and PDF files are not read down there.
extern const std::span<const ReaderRule> walkReaders;

/// What reads a file of which `name` is the whole name or the last extension, in this order; nothing if no
/// pattern is found in it. Case is ignored.
std::vector<FileReader> readersFor(std::span<const ReaderRule> rules, std::string_view name);

} // namespace quilvane
