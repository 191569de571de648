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

/// Has the disk fetch what the listing of a folder and then the reading of its files ask for first, on a
/// helper thread. Returns at once. While one folder is being fetched, another one is passed over.
void fetchAhead(const std::string& folder);

/// Opens the files that a run is about to read, a few dozen before their turn, on helper threads, and has the
/// disk fetch what they begin with.
///
/// What is read, and in which order, is as without it. A file whose opening does not come to an end holds up
/// a helper and the run, but not the window. Where no thread can be started, the run opens its files itself.
class ReadAhead {
public:
    using Opener = std::function<OpenedFile(const std::string& path)>;

    /// `paths` are native and in the order in which they will be taken. For fewer than two nothing is
    /// started. A test may give an `opener` of its own; the helpers call it, perhaps after this object has
    /// gone.
    explicit ReadAhead(
        std::vector<std::string> paths,
        Opener opener = [](const auto& path) { return OpenedFile::open(path); });
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    /// Never waits for the helpers: what they still have in hand they close by themselves.
    ~ReadAhead();

    /// The item for the next path, as GetFolderItem gives it; nil, too, after the last one. The first reading
    /// stream on the item takes the file that a helper has opened, or the reason why it could not. Keeps the
    /// window painted while it waits.
    Ref<FolderItem> next();

private:
    class Queue;
    void startHelper();

    std::shared_ptr<Queue> m_queue;
    unsigned m_helpers = 0;
    std::size_t m_next = 0;
};

} // namespace quilvane
