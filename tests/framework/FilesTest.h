// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/files/FolderItem.h"
#include "support/Scoped.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace quilvane {

class Files : public testing::Test {
protected:
    Ref<FolderItem> item(std::string_view name) const { return itemAt(folder / name); }
    static unsigned permissionsOf(const std::string& path)
    {
        return static_cast<unsigned>(std::filesystem::status(path).permissions());
    }

    TempFolder folder;
};

} // namespace quilvane
