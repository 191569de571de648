// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/characterProperties.h"

#include "text/littleEndian.h"

#include <algorithm>
#include <map>

namespace quilvane {

namespace {

constexpr std::size_t pageSize = 512;
constexpr std::size_t positionSize = 4;

/// The size of the operand after a property's two-byte code ([MS-DOC] 2.2.5.1); 0 if the operand's first byte
/// holds it.
std::size_t operandSize(std::uint16_t code)
{
    constexpr std::size_t sizes[] = { 1, 1, 2, 4, 2, 2, 0, 3 };
    return sizes[code >> 13];
}

/// A page of the main stream that gives the properties of characters, by stretches of the main stream. Its
/// last byte is the number of stretches. It begins with their borders; then comes, for each, the number of
/// the page's word where its list of changes begins.
class PropertyPage {
public:
    PropertyPage(std::string_view page, bool isOld)
        : m_page(page)
        , m_count(u8At(page, pageSize - 1))
        , m_isOld(isOld)
    {
    }

    void appendDeletedTo(std::vector<ByteRange>& ranges)
    {
        for (std::size_t i = 0; i < m_count; ++i) {
            const std::size_t begin = u32At(m_page, i * positionSize);
            const std::size_t end = u32At(m_page, (i + 1) * positionSize);
            if (begin < end && isDeleted(i))
                ranges.push_back({ begin, end });
        }
    }

private:
    bool isDeleted(std::size_t stretch)
    {
        const std::size_t word = u8At(m_page, (m_count + 1) * positionSize + stretch);
        if (word == 0)
            return false;
        const auto [known, isNew] = m_deletes.try_emplace(word, false);
        const std::size_t at = word * 2;
        const std::size_t size = u8At(m_page, at);
        // Lists do not overlap in a genuine page. In a forged one each could be as long as the page, so their
        // sum is limited.
        if (isNew && m_looked + size <= pageSize) {
            m_looked += size;
            known->second = marksDeletion(bytesAt(m_page, at + 1, size), m_isOld);
        }
        return known->second;
    }

    std::string_view m_page;
    std::size_t m_count;
    bool m_isOld;
    /// By the number of the word, since stretches share lists.
    std::map<std::size_t, bool> m_deletes;
    std::size_t m_looked = 0; // bytes
};

std::vector<ByteRange> merged(std::vector<ByteRange> ranges)
{
    std::sort(ranges.begin(), ranges.end(),
        [](const ByteRange& left, const ByteRange& right) { return left.begin < right.begin; });
    std::vector<ByteRange> result;
    for (const ByteRange& range : ranges) {
        if (!result.empty() && range.begin <= result.back().end)
            result.back().end = std::max(result.back().end, range.end);
        else
            result.push_back(range);
    }
    return result;
}

} // namespace

bool marksDeletion(std::string_view changes, bool isOld)
{
    constexpr std::uint8_t oldDeletionMark = 65;
    constexpr std::uint16_t deletionMark = 0x0800;
    // The codes of old lists ascend, and no code of a character's property is lower.
    if (isOld)
        return u8At(changes, 0) == oldDeletionMark && u8At(changes, 1) != 0;
    bool isMarked = false;
    for (std::size_t at = 0; holdsBytes(changes, at, 3);) {
        const std::uint16_t code = u16At(changes, at);
        const std::uint8_t firstByte = u8At(changes, at + 2);
        if (code == deletionMark)
            isMarked = firstByte != 0;
        const std::size_t size = operandSize(code);
        at += 2 + (size > 0 ? size : std::size_t(1) + firstByte);
    }
    return isMarked;
}

std::vector<ByteRange> deletedRanges(
    const WordHeader& header, std::string_view mainStream, std::string_view tableStream)
{
    const std::string_view bins = bytesAt(tableStream, header.characterBins.begin, header.characterBins.size);
    if (bins.size() < positionSize)
        return {};
    const std::size_t numberSize = header.isOld ? 2 : 4; // bytes of a page's number
    const std::size_t count = (bins.size() - positionSize) / (positionSize + numberSize);
    const std::size_t pagesInStream = mainStream.size() / pageSize;
    std::vector<ByteRange> ranges;
    for (std::size_t i = 0; i < std::min(count, pagesInStream); ++i) {
        const std::size_t at = (count + 1) * positionSize + i * numberSize;
        const std::size_t number = header.isOld ? u16At(bins, at) : u32At(bins, at);
        const std::string_view page = bytesAt(mainStream, number * pageSize, pageSize);
        if (page.size() == pageSize)
            PropertyPage(page, header.isOld).appendDeletedTo(ranges);
    }
    return merged(std::move(ranges));
}

} // namespace quilvane
