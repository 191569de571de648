// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace quilvane {

/// Cuts a stream into texts that may be scanned on their own: each ends after a byte that no address holds,
/// so no match is lost or changed. All use the same buffer.
///
/// Until the stream ends: read into room(), pass the number of bytes to take(), scan its result. Then scan
/// rest(). Every view is valid until the next call of room(). Throws std::bad_alloc.
class TextPieces {
public:
    static constexpr std::size_t usualPieceSize = std::size_t{ 256 } * 1024;

    /// `pieceSize` is the buffer's size in bytes, at least 1. It grows for a run of address bytes that is
    /// longer.
    explicit TextPieces(std::size_t pieceSize = usualPieceSize);

    /// The memory for the next read: at least one byte, usually the piece size minus the rest that was kept.
    std::span<char> room();

    /// Adds the first `bytesRead` bytes of the last room(). Returns the text that may be scanned now; empty
    /// if there is no place to cut yet.
    std::string_view take(std::size_t bytesRead);

    /// What was read but not returned by take(): the last text after the end of the stream.
    std::string_view rest() const;

private:
    std::size_t m_capacity;
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_restBegin = 0;
    std::size_t m_restEnd = 0;
};

} // namespace quilvane
