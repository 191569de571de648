// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>

namespace quilvane {

/// What may be unpacked of one document with all that is embedded in it: a few megabytes can be packed to
/// stand for gigabytes. What is left when it runs out stays unread.
struct ReadingBudget {
    static constexpr std::size_t partBytes = std::size_t(64) << 20; // of one part

    std::size_t bytes = std::size_t(128) << 20; // of all parts, unpacked
    int depth = 4; // of documents in documents, the outermost one included

    void spend(std::size_t count) { bytes -= std::min(bytes, count); }
};

} // namespace quilvane
