// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/ZipArchive.h"

#include <algorithm>
#include <array>
#include <new>

#include <zlib.h>

namespace quilvane {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view localHeaderMark = "PK\3\4"sv;
constexpr std::string_view directoryEntryMark = "PK\1\2"sv;
constexpr std::string_view directoryEndMark = "PK\5\6"sv;

constexpr std::size_t localHeaderSize = 30;
constexpr std::size_t directoryEntrySize = 46;
constexpr std::size_t directoryEndSize = 22;
constexpr std::size_t longestComment = 0xFFFF;

constexpr std::size_t unknownSize = 0xFFFFFFFF; // also what archives of the 64-bit kind say

constexpr std::size_t pieceSize = std::size_t(1) << 14;

/// A little-endian number. `offset + byteCount` lies within the bytes.
std::size_t numberAt(std::string_view bytes, std::size_t offset, std::size_t byteCount)
{
    std::size_t number = 0;
    for (std::size_t i = byteCount; i > 0; --i)
        number = number << 8 | static_cast<unsigned char>(bytes[offset + i - 1]);
    return number;
}

std::size_t numberAt2(std::string_view bytes, std::size_t offset)
{
    return numberAt(bytes, offset, 2);
}

std::size_t numberAt4(std::string_view bytes, std::size_t offset)
{
    return numberAt(bytes, offset, 4);
}

bool holds(std::string_view bytes, std::size_t offset, std::size_t size)
{
    return offset <= bytes.size() && size <= bytes.size() - offset;
}

/// zlib's side of unpacking one file.
class Inflater {
public:
    explicit Inflater(std::string_view packed)
    {
        constexpr int rawDeflate = -MAX_WBITS;
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
        m_stream.avail_in = static_cast<uInt>(std::min<std::size_t>(packed.size(), unknownSize));
        if (inflateInit2(&m_stream, rawDeflate) != Z_OK)
            throw std::bad_alloc();
    }
    ~Inflater() { inflateEnd(&m_stream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    /// The next bytes, good until the next call; empty when there are no more.
    std::string_view next()
    {
        if (m_isAtEnd)
            return {};
        m_stream.next_out = reinterpret_cast<Bytef*>(m_piece.data());
        m_stream.avail_out = static_cast<uInt>(m_piece.size());
        m_isAtEnd = inflate(&m_stream, Z_NO_FLUSH) != Z_OK;
        return { m_piece.data(), m_piece.size() - m_stream.avail_out };
    }

private:
    z_stream m_stream{};
    std::array<char, pieceSize> m_piece;
    bool m_isAtEnd = false;
};

} // namespace

ZipArchive::ZipArchive(std::string_view bytes)
    : m_bytes(bytes)
{
    if (!readDirectory()) {
        m_isDamaged = true;
        m_entries.clear();
        findLocalHeaders();
    }
    for (std::size_t i = 0; i < m_entries.size(); ++i)
        m_byName.try_emplace(m_entries[i].name, i);
}

bool ZipArchive::readDirectory()
{
    const std::size_t tail = m_bytes.size() - std::min(m_bytes.size(), directoryEndSize + longestComment);
    const std::size_t mark = m_bytes.substr(tail).rfind(directoryEndMark);
    if (mark == std::string_view::npos || !holds(m_bytes, tail + mark, directoryEndSize))
        return false;
    const std::size_t end = tail + mark;
    const std::size_t count = numberAt2(m_bytes, end + 10);
    const std::size_t size = numberAt4(m_bytes, end + 12);
    const std::size_t offset = numberAt4(m_bytes, end + 16);
    if (offset > end || size > end - offset)
        return false;
    // Offsets count from where the archive begins, which is behind the bytes that may stand in front of it.
    const std::size_t base = end - size - offset;

    std::size_t at = end - size;
    std::size_t found = 0;
    for (; holds(m_bytes, at, directoryEntrySize) && m_bytes.substr(at).starts_with(directoryEntryMark);
         ++found) {
        if (!addEntry(base + numberAt4(m_bytes, at + 42), numberAt4(m_bytes, at + 20)))
            return false;
        at += directoryEntrySize + numberAt2(m_bytes, at + 28) + numberAt2(m_bytes, at + 30)
            + numberAt2(m_bytes, at + 32);
    }
    return found > 0 && (found & 0xFFFF) == count;
}

void ZipArchive::findLocalHeaders()
{
    for (std::size_t at = 0; (at = m_bytes.find(localHeaderMark, at)) != std::string_view::npos;
         at += localHeaderMark.size()) {
        // Written at one go, an archive tells the size of a file behind it only.
        constexpr std::size_t sizeFollows = 8;
        const bool isSizeKnown
            = holds(m_bytes, at, localHeaderSize) && !(numberAt2(m_bytes, at + 6) & sizeFollows);
        addEntry(at, isSizeKnown ? numberAt4(m_bytes, at + 18) : unknownSize);
    }
}

/// False if there is no header of a file. One of a kind that can't be unpacked is passed over.
bool ZipArchive::addEntry(std::size_t headerOffset, std::size_t packedSize)
{
    if (!holds(m_bytes, headerOffset, localHeaderSize))
        return false;
    const std::string_view header = m_bytes.substr(headerOffset);
    const std::size_t nameSize = numberAt2(header, 26);
    const std::size_t dataOffset = localHeaderSize + nameSize + numberAt2(header, 28);
    if (!header.starts_with(localHeaderMark) || dataOffset > header.size())
        return false;

    constexpr std::size_t encrypted = 1;
    constexpr std::size_t stored = 0;
    constexpr std::size_t deflated = 8;
    const std::size_t method = numberAt2(header, 8);
    if ((numberAt2(header, 6) & encrypted) || (method != stored && method != deflated))
        return true;
    std::string_view packed = header.substr(dataOffset);
    if (packedSize != unknownSize)
        packed = packed.substr(0, packedSize);
    m_entries.push_back({ normalised(header.substr(localHeaderSize, nameSize)), packed, method == deflated });
    return true;
}

const ZipArchive::Entry* ZipArchive::find(std::string_view name) const
{
    const auto found = m_byName.find(normalised(name));
    return found == m_byName.end() ? nullptr : &m_entries[found->second];
}

void ZipArchive::unpack(const Entry& entry, const std::function<bool(std::string_view)>& take)
{
    if (entry.isDeflated) {
        Inflater inflater(entry.packed);
        for (std::string_view piece = inflater.next(); !piece.empty() && take(piece);)
            piece = inflater.next();
    } else {
        for (std::size_t at = 0; at < entry.packed.size(); at += pieceSize) {
            if (!take(entry.packed.substr(at, pieceSize)))
                return;
        }
    }
}

std::string ZipArchive::normalised(std::string_view name)
{
    name.remove_prefix(std::min(name.find_first_not_of("/\\"), name.size()));
    std::string result(name);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
        else if (c == '\\')
            c = '/';
    }
    return result;
}

} // namespace quilvane
