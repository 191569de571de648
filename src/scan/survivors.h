// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scan/firstRows.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace quilvane {

/// Which rows of a list stay when a run has ended: those that do not look like names of pictures, and of rows
/// that differ in case at most the first. One element a row, 1 for a row that stays and 0 for one that goes.
/// `betweenBlocks` is called every few hundred rows.
std::vector<unsigned char> findSurvivors(
    std::size_t rowCount, const RowText& rowText, const std::function<void()>& betweenBlocks);

} // namespace quilvane
