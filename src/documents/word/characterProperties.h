// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/word/WordHeader.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace quilvane {

/// Whether a list of property changes ("grpprl") marks its characters as deleted. `isOld`: of Word 6 or 95.
bool marksDeletion(std::string_view changes, bool isOld);

/// Bytes of the main stream, [begin, end).
struct ByteRange {
    std::size_t begin;
    std::size_t end;
};

/// Where text stands that is marked as deleted, sorted and without overlaps. Damage of the tables that say so
/// makes it fewer, never more than there are bytes in the main stream.
std::vector<ByteRange> deletedRanges(
    const WordHeader& header, std::string_view mainStream, std::string_view tableStream);

} // namespace quilvane
