// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// Takes a body of unknown length piece by piece, and needs little more memory than its size. A string that
/// grows by doubling would need two or three times as much whenever it moves.
class BodyBuffer {
public:
    // Both throw OutOfMemoryException if there is not enough memory.
    /// Makes room for a body of that size, which may be wrong. To be called before the first piece.
    void expect(std::uint64_t size);
    void append(std::string_view bytes);
    /// All of it. Leaves the buffer empty.
    std::string take();

    std::uint64_t size() const { return m_size; }

private:
    void addPart(std::uint64_t size);

    // Address space that is not written to costs nothing, and blocks of this size go back to the system when
    // they are freed: glibc's allocator keeps no free block from 32 MB on.
    static constexpr std::uint64_t partSize = std::uint64_t(64) << 20;

    std::vector<std::string> m_parts; // all but the last one full
    std::uint64_t m_size = 0;
};

} // namespace quilvane
