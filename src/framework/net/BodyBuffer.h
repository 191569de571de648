// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// Takes a body piece by piece and holds it about once, also if nobody knows how long it will be: in a string
/// that grows by doubling it would be there twice, or three times, whenever the string moves.
class BodyBuffer {
public:
    // Both throw OutOfMemoryException if the memory for it is not there.
    /// Makes room for a body of that size, which is a guess. Before the first piece.
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
