// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quilvane {

/// How long the event loop may run before a file is read. It returns as soon as nothing is left to do.
inline constexpr int eventLoopMilliseconds = 30;

/// Matches the lock files that a word processor keeps beside an open document.
inline constexpr const char* lockFilePattern = "~\\$";

/// What the three ways to search a folder do differently. All of it is wanted.
struct RunRules {
    /// Each pattern that is found in the whole name of a child of the folder lists that child once more for
    /// the worker: a.txt.csv is listed twice.
    std::span<const char* const> listedNames;
    /// Names in which this is found are not listed. Null leaves out none.
    const char* leftOut;
    /// True: every folder is walked, and so are links to folders. False: links are not walked, and folders
    /// only while Search Subfolders is ticked.
    bool walksEveryFolder;
    /// Whether the walk looks at Search Subfolders again before each folder.
    bool asksAgain;
    /// The number of the first folder in the progress text.
    int firstNumber;
};

/// The Search Folder button. It lists no PDF files and no lock files of an open word processor.
extern const RunRules searchFolderRules;
/// The second handler, whose button no user can press. Its dots are wildcards, and it lists each PDF file
/// twice and no delimited file.
extern const RunRules secondEntryRules;
/// A folder dropped on the main window.
extern const RunRules droppedFolderRules;

/// Whether `pattern`, a regular expression, is found anywhere in `name`, in any case.
bool nameHas(const char* pattern, std::string_view name);

/// The last dot of the name and what follows it; a dot and the whole name if it has no dot.
std::string lastExtension(std::string_view name);

/// (index + 1) / (count - 1) * 65536 without its fraction; the smallest number where that is infinite, as for
/// the only element of an array. Nobody looks at it.
std::int64_t progressValue(std::size_t index, std::size_t count);

/// "Searching 2 of 7: name"
std::string searchingText(std::size_t number, std::size_t count, std::string_view name);

} // namespace quilvane
