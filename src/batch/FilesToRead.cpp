// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/FilesToRead.h"

#include "batch/runRules.h"
#include "framework/keepWindowPainted.h"

#include <algorithm>
#include <utility>

namespace quilvane {

FilesToRead::FilesToRead(std::span<const std::string> paths, std::span<const ReaderRule> rules)
{
    std::vector<std::string> opened;
    for (const std::string& path : paths) {
        keepWindowPainted();
        std::vector<FileReader> readers = readersFor(rules, lastExtension(FolderItem(path).Name()));
        // A PDF document is not opened here at all: see doPDFCheckThread.
        const bool isOpened = std::any_of(
            readers.begin(), readers.end(), [](FileReader reader) { return reader != FileReader::PDF; });
        if (isOpened)
            opened.push_back(path);
        m_files.push_back({ path, std::move(readers), isOpened });
    }
    m_ahead.emplace(std::move(opened));
}

FilesToRead::File FilesToRead::next()
{
    Listed& listed = m_files[m_next++];
    return { listed.isOpenedAhead ? m_ahead->next() : GetFolderItem(listed.path), std::move(listed.readers) };
}

} // namespace quilvane
