// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>

namespace quilvane {

/// What reading one document may cost. Times are processor times, so that no page is lost on a busy machine.
struct DocumentLimits {
    /// For opening a PDF document and for each of its pages. A healthy page takes milliseconds.
    std::chrono::milliseconds step{ 4000 };
    /// For a document as a whole; a large file gets more.
    std::chrono::seconds document{ 10 };
    /// Real time: a document whose child does almost nothing for this long is given up, too. A sleeping disk
    /// needs less to wake up.
    std::chrono::milliseconds silence{ 20000 };
    /// In bytes. A healthy document needs some 20 MiB.
    std::uint64_t memory = std::uint64_t(512) << 20;
};

} // namespace quilvane
