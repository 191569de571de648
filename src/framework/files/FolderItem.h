// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

class TextInputStream;
class TextOutputStream;

/// A reference to a file or folder that may not exist. Nothing is held open.
///
/// Got from GetFolderItem, a dialog, or another item's Child and Item. Paths and names are bytes as the file
/// system has them, not always UTF-8: show them through displayPath.
class FolderItem {
public:
    /// `path` must be absolute; GetFolderItem takes any.
    explicit FolderItem(std::string path);

    /// The item of that name in this folder, there or not. Nil for a name that no file can have: an empty
    /// one, "." and "..", one with a slash or a NUL in it.
    Ref<FolderItem> Child(std::string_view name) const;

    /// Links are followed: false for a link that leads nowhere.
    bool Exists() const;
    /// Whether this is a folder or a link to one.
    bool Directory() const;
    /// Whether this is a symbolic link, to whatever and even to nothing.
    bool Alias() const;

    /// What the file system itself knows the file or folder by, links followed; all 0 where there is none.
    struct Identity {
        std::uint64_t device = 0;
        std::uint64_t number = 0;
        bool operator==(const Identity&) const = default;
    };
    Identity identity() const;

    /// The last part of the path; "/" for the root.
    std::string Name() const;
    const std::string& NativePath() const { return m_path; }

    /// The number of the folder's children, hidden ones included; 0 for what is no folder or can't be read.
    /// The folder is listed once, when Count or Item is first called: a new item sees what has changed.
    int Count() const;
    /// The child at `index`, from 1 to Count, in the order that the file system gives; nil outside.
    Ref<FolderItem> Item(int index) const;

    /// Makes the folder; content with one that is there. Its parent must exist. Throws IOException.
    void CreateAsFolder() const;

    /// TextOutputStream::Create on this item.
    Ref<TextOutputStream> CreateTextFile() const;
    /// TextInputStream::Open on this item.
    Ref<TextInputStream> OpenAsTextFile() const;

private:
    const std::vector<std::string>& children() const;

    std::string m_path;
    mutable std::vector<std::string> m_children;
    mutable bool m_listed = false;
};

/// The item for a path; a relative one is taken from the current folder, and an empty one is that folder. Nil
/// only for a path with a NUL in it.
Ref<FolderItem> GetFolderItem(std::string_view path);

} // namespace quilvane
