// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quilvane {

enum class FileReader;

/// What became of the files that a run has met, each path counted once, however often it is listed or read.
/// The user can read it at the finish line: a run tells there how much it found, and not how much it left.
class RunAccount {
public:
    /// Why a file was not read.
    enum class Left { OtherKind, PdfInFolder, OldWordBelow, LockFile, NotOpened, NotWord };

    void clear() { *this = {}; }

    void met(const std::string& path);
    /// What comes first for a path counts: read() or left().
    void read(const std::string& path, FileReader reader);
    void left(const std::string& path, Left why);
    /// A folder of which not all children are known.
    void folderNotListed(const std::string& path);

    /// Sentences for the user; empty if nothing was met.
    std::string text() const;

private:
    /// How many there are, and what the first of them are called.
    struct Group {
        std::size_t count = 0;
        std::vector<std::string> names;

        void add(std::string_view path);
        std::string examples() const;
    };

    /// Whether this is the first that is told of what became of the path.
    bool settle(const std::string& path);

    std::unordered_map<std::size_t, bool> m_files; // hash of the path, and whether it was read or left
    std::size_t m_settled = 0;
    std::array<std::size_t, 4> m_read{}; // by FileReader
    std::array<Group, 6> m_left; // by Left
    Group m_folders;
};

} // namespace quilvane
