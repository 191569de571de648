// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/OpenedFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

class TextInputStream;
class TextOutputStream;

/// A reference to a file or folder that may not exist. Holds no file open, except for an item from ReadAhead.
///
/// Returned by itemAt and GetFolderItem, a dialog, or another item's Child and Item. Paths and names are
/// bytes as the file system has them, not always UTF-8: show them through displayPath.
class FolderItem {
public:
    /// `path` must be absolute; itemAt takes any.
    explicit FolderItem(std::string path);
    /// A file that ReadAhead has opened.
    FolderItem(std::string path, OpenedFile opened);

    /// What the listing of a folder tells about a child.
    enum class Kind { Unknown, Folder, Link, Other };
    FolderItem(std::string path, Kind kind);

    /// The item of that name in this folder, there or not. Nil for a name that no file can have: an empty
    /// one, "." and "..", one with a slash or a NUL in it.
    Ref<FolderItem> Child(std::string_view name) const;

    /// Links are followed: false for a link that leads nowhere.
    bool Exists() const;
    /// Whether this is a folder or a link to one. For a child from Item, as it was when its folder was
    /// listed.
    bool Directory() const;
    /// Whether this is a symbolic link, to anything or to nothing. For a child from Item, as for Directory.
    bool Alias() const;

    /// The file system's own identity of the file or folder, links followed; all 0 if there is none.
    struct Identity {
        std::uint64_t device = 0;
        std::uint64_t number = 0;
        bool operator==(const Identity&) const = default;
        bool operator<(const Identity& other) const
        {
            return device != other.device ? device < other.device : number < other.number;
        }
    };
    Identity identity() const;

    /// The last part of the path; "/" for the root.
    std::string Name() const;
    const std::string& NativePath() const { return m_path; }

    /// The number of the folder's children, hidden ones included; 0 for what is no folder or can't be read.
    /// The folder is listed once, when Count or Item is first called: a new item sees what has changed.
    int Count() const;
    /// Why Count lacks children, as a sentence for the user; empty if the folder was listed to its end.
    const std::string& whyNotListed() const;
    /// The child at `index`, from 1 to Count, in the order that the file system gives; nil outside.
    Ref<FolderItem> Item(int index) const;

    /// Makes the folder; does nothing if it exists. Its parent must exist. Throws IOException.
    void CreateAsFolder() const;

    /// TextOutputStream::Create on this item.
    Ref<TextOutputStream> CreateTextFile() const;
    /// TextInputStream::Open on this item.
    Ref<TextInputStream> OpenAsTextFile() const;

    /// Opens the file for a stream. The first call returns the file that ReadAhead has opened, if there is
    /// one.
    OpenedFile openToRead() const;

private:
    struct ListedChild {
        std::string name;
        Kind kind;
    };
    const std::vector<ListedChild>& children() const;

    std::string m_path;
    Kind m_kind = Kind::Unknown;
    mutable std::optional<OpenedFile> m_opened;
    mutable std::vector<ListedChild> m_children;
    mutable std::string m_whyNotListed;
    mutable bool m_listed = false;
};

/// The item for a path, there or not; a relative one is taken from the current folder, and an empty one is
/// that folder. Nil only for a path with a NUL in it.
Ref<FolderItem> itemAt(std::string_view path);

/// As itemAt, but nil, with the reason, for a path at which there is nothing, not even a link.
Ref<FolderItem> GetFolderItem(std::string_view path);

} // namespace quilvane
