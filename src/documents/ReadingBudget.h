// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace quilvane {

/// What reading one document may cost, whatever the document says: a few megabytes can be packed to stand for
/// gigabytes. One budget serves a document with all that is embedded in it; each step takes its share, and
/// what is left when it runs out stays unread.
struct ReadingBudget {
    static constexpr std::size_t partBytes = std::size_t(64) << 20; // of one part, unpacked

    std::size_t bytes = std::size_t(128) << 20; // of all parts, unpacked
    int parts = 1000;
    int depth = 4; // of documents in documents, the outermost one included
    std::uint64_t xmlWork = 1'500'000'000; // comparisons of names or bytes; two or three seconds
    int xmlErrors = 50'000; // telling one takes its time, too
};

} // namespace quilvane
