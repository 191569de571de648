// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/FolderItem.h"
#include "framework/files/OpenedFile.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quilvane {

/// Lets the disk fetch a folder's listing and the beginnings of those files whose names end in one of
/// `extensions`, such as ".txt", on a helper thread. Returns at once. Does nothing while another folder is
/// being fetched.
void fetchAhead(const std::string& folder, const std::vector<std::string>& extensions);

/// Opens the files that a run is about to read, a few dozen of them before their turn, on helper threads, and
/// lets the disk fetch their beginnings.
///
/// It does not change what is read, nor the order. A file whose opening never ends blocks a helper and the
/// run, but not the window. If no thread can be started, the run opens its files itself.
class ReadAhead {
public:
    using Opener = std::function<OpenedFile(const std::string& path)>;

    /// `paths` are native and in the order in which they will be taken. A test may give an `opener` of its
    /// own; the helpers call it, perhaps after this object was destroyed.
    explicit ReadAhead(
        std::vector<std::string> paths,
        Opener opener = [](const auto& path) { return OpenedFile::open(path); });
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    /// Never waits for the helpers: they close their files by themselves.
    ~ReadAhead();

    /// The item for the next path, as GetFolderItem gives it; nil after the last one. The first stream that
    /// opens the item gets the file that a helper has opened, or the reason why that failed. Keeps the window
    /// painted while it waits.
    Ref<FolderItem> next();

private:
    class Queue;
    void startHelper();

    std::shared_ptr<Queue> m_queue;
    unsigned m_helpers = 0;
    std::size_t m_next = 0;
};

} // namespace quilvane
