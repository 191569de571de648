// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/ZipArchive.h"

#include "text/ascii.h"
#include "text/littleEndian.h"

#include <algorithm>
#include <array>
#include <new>
#include <numeric>
#include <span>

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

constexpr std::size_t unknownSize = 0xFFFFFFFF; // 64-bit archives have this value, too

constexpr std::string_view slashes = "/\\";

constexpr std::size_t mostEntries = 500'000;

/// How many bytes are searched for files if there is no directory.
constexpr std::size_t mostSearched = std::size_t(256) << 20;

constexpr std::array<char, 256> comparedAs = [] {
    std::array<char, 256> result{};
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = i == '\\' ? '/' : lowerCased(static_cast<char>(i));
    return result;
}();

char compared(char c)
{
    return comparedAs[static_cast<unsigned char>(c)];
}

bool isLower(std::string_view left, std::string_view right)
{
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
        [](char a, char b) { return compared(a) < compared(b); });
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

    /// Fills `room` with the next bytes and returns their number, which is less than the room only at the
    /// end.
    std::size_t next(std::span<char> room)
    {
        m_stream.next_out = reinterpret_cast<Bytef*>(room.data());
        m_stream.avail_out = static_cast<uInt>(room.size());
        while (m_stream.avail_out > 0 && inflate(&m_stream, Z_NO_FLUSH) == Z_OK) { }
        return room.size() - m_stream.avail_out;
    }

private:
    z_stream m_stream{};
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
    m_byName.resize(m_entries.size());
    std::iota(m_byName.begin(), m_byName.end(), 0U);
    std::stable_sort(m_byName.begin(), m_byName.end(), [this](std::uint32_t left, std::uint32_t right) {
        return isLower(m_entries[left].name, m_entries[right].name);
    });
}

bool ZipArchive::readDirectory()
{
    const std::size_t tail = m_bytes.size() - std::min(m_bytes.size(), directoryEndSize + longestComment);
    const std::size_t mark = m_bytes.substr(tail).rfind(directoryEndMark);
    if (mark == std::string_view::npos || !holdsBytes(m_bytes, tail + mark, directoryEndSize))
        return false;
    const std::size_t end = tail + mark;
    const std::size_t count = u16At(m_bytes, end + 10);
    const std::size_t size = u32At(m_bytes, end + 12);
    const std::size_t offset = u32At(m_bytes, end + 16);
    if (offset > end || size > end - offset)
        return false;
    // Offsets count from the beginning of the archive. Other bytes may precede it in the file.
    const std::size_t base = end - size - offset;

    std::size_t at = end - size;
    std::size_t found = 0;
    for (; found < mostEntries && holdsBytes(m_bytes, at, directoryEntrySize)
         && m_bytes.substr(at).starts_with(directoryEntryMark);
         ++found) {
        if (!addEntry(base + u32At(m_bytes, at + 42), u32At(m_bytes, at + 20)))
            return false;
        at += directoryEntrySize + u16At(m_bytes, at + 28) + u16At(m_bytes, at + 30)
            + u16At(m_bytes, at + 32);
    }
    return found == mostEntries || (found > 0 && (found & 0xFFFF) == count);
}

void ZipArchive::findLocalHeaders()
{
    const std::string_view searched = m_bytes.substr(0, mostSearched);
    for (std::size_t at = 0; m_entries.size() < mostEntries
         && (at = searched.find(localHeaderMark, at)) != std::string_view::npos;
         at += localHeaderMark.size()) {
        // An archive that was written as a stream holds the size of a file only after the file.
        constexpr std::size_t sizeFollows = 8;
        const bool isSizeKnown
            = holdsBytes(m_bytes, at, localHeaderSize) && !(u16At(m_bytes, at + 6) & sizeFollows);
        addEntry(at, isSizeKnown ? u32At(m_bytes, at + 18) : unknownSize);
    }
}

/// False if there is no file header at that offset. Files that no document has are skipped.
bool ZipArchive::addEntry(std::size_t headerOffset, std::size_t packedSize)
{
    if (!holdsBytes(m_bytes, headerOffset, localHeaderSize))
        return false;
    const std::string_view header = m_bytes.substr(headerOffset);
    const std::size_t nameSize = u16At(header, 26);
    const std::size_t dataOffset = localHeaderSize + nameSize + u16At(header, 28);
    if (!header.starts_with(localHeaderMark) || dataOffset > header.size())
        return false;

    constexpr std::size_t encrypted = 1;
    constexpr std::size_t stored = 0;
    constexpr std::size_t deflated = 8;
    const std::size_t method = u16At(header, 8);
    if ((u16At(header, 6) & encrypted) || (method != stored && method != deflated) || nameSize > longestName)
        return true;
    std::string_view packed = header.substr(dataOffset);
    if (packedSize != unknownSize)
        packed = packed.substr(0, packedSize);
    m_entries.push_back(
        { withoutLeading(header.substr(localHeaderSize, nameSize), slashes), packed, method == deflated });
    return true;
}

const ZipArchive::Entry* ZipArchive::find(std::string_view name) const
{
    name = withoutLeading(name, slashes);
    const auto found = std::lower_bound(
        m_byName.begin(), m_byName.end(), name, [this](std::uint32_t index, std::string_view wanted) {
            return isLower(m_entries[index].name, wanted);
        });
    if (found == m_byName.end() || isLower(name, m_entries[*found].name))
        return nullptr;
    return &m_entries[*found];
}

std::string ZipArchive::unpacked(const Entry& entry, std::size_t most)
{
    if (!entry.isDeflated)
        return std::string(entry.packed.substr(0, most));
    constexpr std::size_t firstSize = std::size_t(1) << 16;
    std::string result;
    Inflater inflater(entry.packed);
    std::size_t size = 0;
    do {
        result.resize(std::min(most, std::max(firstSize, size * 2)));
        size += inflater.next({ result.data() + size, result.size() - size });
    } while (size == result.size() && size < most);
    result.resize(size);
    return result;
}

std::string ZipArchive::normalised(std::string_view name)
{
    std::string result(withoutLeading(name, slashes));
    std::transform(result.begin(), result.end(), result.begin(), compared);
    return result;
}

} // namespace quilvane
