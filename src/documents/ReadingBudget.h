// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>

namespace quilvane {

/// How much may be unpacked from one document, embedded documents included: a few packed megabytes can unpack
/// to gigabytes. What exceeds the budget stays unread.
struct ReadingBudget {
    static constexpr std::size_t partBytes = std::size_t(64) << 20; // of one part

    // What is kept for a part, and for each of its relationships, whatever its size.
    static constexpr std::size_t costOfPart = std::size_t(1) << 14;
    static constexpr std::size_t costOfRelationship = 256;

    std::size_t bytes = std::size_t(128) << 20; // of all parts, unpacked, and these costs
    int depth = 4; // of documents in documents, the outermost one included

    void spend(std::size_t count) { bytes -= std::min(bytes, count); }
};

} // namespace quilvane
