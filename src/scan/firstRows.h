// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace quilvane {

/// The text of a row, numbered from 0. The texts must stay as they are while rows are compared.
using RowText = std::function<std::string_view(std::size_t row)>;

/// The key of the hash. Rows come from pages that may be hostile: who writes one must not know the key.
struct HashSeed {
    std::uint64_t first;
    std::uint64_t second;
};

/// Drawn once per process.
HashSeed processHashSeed();

/// Tells the first rows of their kind from their duplicates, ignoring ASCII case: one element a row, 1 for a
/// row that no earlier row equals and 0 for the others. The first rows in their order are what is left when
/// every row is compared with all behind it and those that equal it are removed.
///
/// Takes linear time and 12 bytes a row. Calls `betweenBlocks` every few hundred rows; what that throws
/// passes through. Throws std::length_error for more than four thousand million rows.
std::vector<unsigned char> findFirstRows(std::size_t rowCount, const RowText& rowText,
    const std::function<void()>& betweenBlocks, HashSeed seed = processHashSeed());

} // namespace quilvane
