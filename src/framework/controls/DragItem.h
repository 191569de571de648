// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/FolderItem.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quilvane {

/// The dropped items, one at a time. The first is current at the beginning; NextItem() goes to the next.
class DragItem {
public:
    /// Native paths; none for an item that is no file or folder.
    explicit DragItem(std::vector<std::optional<std::string>> paths)
        : m_paths(std::move(paths))
    {
    }

    bool FolderItemAvailable() const { return m_current < m_paths.size() && m_paths[m_current]; }

    /// The current file or folder, which may have vanished; nil if the item is neither.
    Ref<quilvane::FolderItem> FolderItem() const
    {
        return FolderItemAvailable() ? itemAt(*m_paths[m_current]) : Ref<quilvane::FolderItem>();
    }

    /// False if there is no further item; the last one then stays current.
    bool NextItem()
    {
        if (m_current + 1 >= m_paths.size())
            return false;
        ++m_current;
        return true;
    }

private:
    std::vector<std::optional<std::string>> m_paths;
    std::size_t m_current = 0;
};

} // namespace quilvane
