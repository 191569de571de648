// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>

namespace quilvane {

/// What reading one document may cost. Times are of the processor, so that a busy machine loses no honest
/// page.
struct DocumentLimits {
    /// For opening a PDF document and for each of its pages. A healthy page takes milliseconds.
    std::chrono::milliseconds step{ 4000 };
    /// For a document as a whole; a large file gets more.
    std::chrono::seconds document{ 10 };
    /// On the clock: one that does next to nothing for that long is given up, too. A disk that slept wakes
    /// sooner.
    std::chrono::milliseconds silence{ 20000 };
    /// In bytes, of what is in use. A healthy document takes some 20 MiB.
    std::uint64_t memory = std::uint64_t(512) << 20;
};

} // namespace quilvane
