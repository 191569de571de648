// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace quilvane {

/// Cuts a stream of reads into texts that may be scanned on their own: a text ends after a byte that no
/// address holds, so no match is lost or changed. One buffer is reused for all of them.
///
/// Until the stream ends: read into room(), pass the number of bytes to take(), scan what it gives. Then scan
/// rest(). Every view is valid until the next call of room(). Memory that runs out passes through as
/// std::bad_alloc.
class TextPieces {
public:
    static constexpr std::size_t usualPieceSize = std::size_t{ 256 } * 1024;

    /// `pieceSize` is the buffer's size in bytes, at least 1. It grows for a run of address bytes that is
    /// longer.
    explicit TextPieces(std::size_t pieceSize = usualPieceSize);

    /// Where the next read goes: at least one byte, usually the piece size less the rest that was carried
    /// over.
    std::span<char> room();

    /// Takes over the first `bytesRead` bytes of the last room(). Gives the text that may be scanned now;
    /// empty if no safe cut has come yet.
    std::string_view take(std::size_t bytesRead);

    /// What has been read and not been given by take(): the last text, once the stream has ended.
    std::string_view rest() const;

private:
    std::size_t m_capacity;
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_restBegin = 0;
    std::size_t m_restEnd = 0;
};

} // namespace quilvane
