// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "batch/readerRules.h"
#include "framework/Ref.h"
#include "framework/files/FolderItem.h"
#include "framework/files/ReadAhead.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quilvane {

/// Goes through a list of files and gives each with its readers. A file that will be read is opened some time
/// before its turn; one that is only listed is not touched.
class FilesToRead {
public:
    /// `paths` are native ones. `rules` choose the readers by the last extension.
    FilesToRead(std::span<const std::string> paths, std::span<const ReaderRule> rules);

    struct File {
        Ref<FolderItem> item; // nil if it has vanished since it was listed
        std::vector<FileReader> readers; // in this order; none for a file that is only listed
    };
    /// Not to be called more often than there are paths.
    File next();

private:
    struct Listed {
        std::string path;
        std::vector<FileReader> readers;
        bool isOpenedAhead;
    };

    std::vector<Listed> m_files;
    std::size_t m_next = 0;
    std::optional<ReadAhead> m_ahead;
};

} // namespace quilvane
