// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quilvane {

enum class FileReader;

/// Counts what became of the files of a run. Each path counts once, however often it is listed or read. The
/// user reads it as the help text of the finish line, whose own text tells only how much was found.
class RunAccount {
public:
    /// Why a file was not read.
    enum class Left { OtherKind, PdfInFolder, OldWordBelow, LockFile, NotOpened, NotWord };

    void clear() { *this = {}; }

    void met(const std::string& path);
    /// A path that is first left and then read counts as read. Otherwise the first call counts.
    void read(const std::string& path, FileReader reader);
    /// Does nothing for a path that was not met.
    void left(const std::string& path, Left why);
    /// A folder of which not all children are known.
    void folderNotListed(const std::string& path);

    /// Sentences for the user; empty if nothing was met.
    std::string text() const;

private:
    /// A count, and the names of the first few.
    struct Group {
        std::size_t count = 0;
        std::vector<std::string> names;

        void add(std::string_view path);
        void remove(std::string_view path);
        std::string examples() const;
    };

    struct Fate {
        bool isRead = false;
        std::optional<Left> left;
    };

    std::unordered_map<std::size_t, Fate> m_files; // by the hash of the path
    std::size_t m_settled = 0; // files that were read or left
    std::array<std::size_t, 4> m_read{}; // by FileReader
    std::array<Group, 6> m_left; // by Left
    Group m_folders;
};

} // namespace quilvane
