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

/// The ranges of text that is marked as deleted, sorted and without overlaps. Damaged tables give fewer
/// ranges.
std::vector<ByteRange> deletedRanges(
    const WordHeader& header, std::string_view mainStream, std::string_view tableStream);

} // namespace quilvane
