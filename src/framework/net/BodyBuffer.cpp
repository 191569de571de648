// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/BodyBuffer.h"

#include "framework/files/availableMemory.h"

#include <algorithm>
#include <utility>

namespace quilvane {

void BodyBuffer::expect(std::uint64_t size)
{
    addPart(std::max(size, partSize));
}

void BodyBuffer::append(std::string_view bytes)
{
    while (!bytes.empty()) {
        if (m_parts.empty() || m_parts.back().size() == m_parts.back().capacity())
            addPart(partSize);
        std::string& part = m_parts.back();
        const std::size_t count = std::min(bytes.size(), part.capacity() - part.size());
        part += bytes.substr(0, count);
        bytes.remove_prefix(count);
        m_size += count;
    }
}

void BodyBuffer::addPart(std::uint64_t size)
{
    // Not checked for a first part of the usual size, since most pages need only a little of it.
    if (!m_parts.empty() || size > partSize)
        requireMemory(size + partSize, "The page is too long");
    m_parts.emplace_back().reserve(size);
}

std::string BodyBuffer::take()
{
    std::vector<std::string> parts = std::exchange(m_parts, {});
    const std::uint64_t size = std::exchange(m_size, 0);
    if (parts.empty())
        return {};
    if (parts.size() == 1)
        return std::move(parts.front());
    std::string body;
    body.reserve(size);
    for (std::string& part : parts) {
        body += part;
        std::string().swap(part); // frees its memory; an assignment would keep it
    }
    return body;
}

} // namespace quilvane
