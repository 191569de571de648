// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/firstRows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <numeric>
#include <random>
#include <span>
#include <stdexcept>
#include <unordered_map>

namespace quilvane {

namespace {

/// Sets the case bit of each of the eight bytes that is an ASCII capital letter.
std::uint64_t foldCase(std::uint64_t bytes)
{
    constexpr std::uint64_t ones = 0x0101010101010101;
    constexpr std::uint64_t topBits = 0x80 * ones;
    const std::uint64_t lowBits = bytes & ~topBits;
    // The sums set the top bit of each byte that is "A" or more, and of each that is more than "Z".
    const std::uint64_t fromA = lowBits + (0x80 - 'A') * ones;
    const std::uint64_t beyondZ = lowBits + (0x7f - 'Z') * ones;
    const std::uint64_t capitals = fromA & ~beyondZ & ~bytes & topBits;
    return bytes | capitals >> 2;
}

/// Up to eight bytes, case-folded; zeros stand for those that are missing.
std::uint64_t foldedWord(const char* bytes, std::size_t count)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, count);
    return foldCase(word);
}

bool equalIgnoringCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    std::size_t i = 0;
    for (; i + 8 <= a.size(); i += 8) {
        if (foldedWord(a.data() + i, 8) != foldedWord(b.data() + i, 8))
            return false;
    }
    return foldedWord(a.data() + i, a.size() - i) == foldedWord(b.data() + i, b.size() - i);
}

/// SipHash-1-3 over the case-folded text: Aumasson and Bernstein, "SipHash: a fast short-input PRF", 2012.
/// Whoever does not know the key cannot make texts that collide.
class SipHash {
public:
    explicit SipHash(HashSeed key)
        : m_v0(key.first ^ 0x736f6d6570736575)
        , m_v1(key.second ^ 0x646f72616e646f6d)
        , m_v2(key.first ^ 0x6c7967656e657261)
        , m_v3(key.second ^ 0x7465646279746573)
    {
    }

    std::uint64_t operator()(std::string_view text)
    {
        std::size_t i = 0;
        for (; i + 8 <= text.size(); i += 8)
            compress(foldedWord(text.data() + i, 8));
        compress(foldedWord(text.data() + i, text.size() - i) | std::uint64_t{ text.size() } << 56);
        m_v2 ^= 0xff;
        for (int finalRound = 0; finalRound < 3; ++finalRound)
            round();
        return m_v0 ^ m_v1 ^ m_v2 ^ m_v3;
    }

private:
    void compress(std::uint64_t word)
    {
        m_v3 ^= word;
        round();
        m_v0 ^= word;
    }

    void round()
    {
        m_v0 += m_v1;
        m_v2 += m_v3;
        m_v1 = std::rotl(m_v1, 13) ^ m_v0;
        m_v3 = std::rotl(m_v3, 16) ^ m_v2;
        m_v0 = std::rotl(m_v0, 32) + m_v3;
        m_v2 += m_v1;
        m_v3 = std::rotl(m_v3, 21) ^ m_v0;
        m_v1 = std::rotl(m_v1, 17) ^ m_v2;
        m_v2 = std::rotl(m_v2, 32);
    }

    std::uint64_t m_v0;
    std::uint64_t m_v1;
    std::uint64_t m_v2;
    std::uint64_t m_v3;
};

constexpr std::size_t blockSize = 256;

/// Calls work(begin, end) for blocks of the rows below `count`, and betweenBlocks behind each.
template <typename Work>
void forEachBlock(std::size_t count, const std::function<void()>& betweenBlocks, const Work& work)
{
    for (std::size_t begin = 0; begin < count; begin += blockSize) {
        work(begin, std::min(begin + blockSize, count));
        betweenBlocks();
    }
}

std::vector<std::uint32_t> hashRows(
    std::size_t rowCount, const RowText& rowText, HashSeed seed, const std::function<void()>& betweenBlocks)
{
    std::vector<std::uint32_t> hashes(rowCount);
    forEachBlock(rowCount, betweenBlocks, [&](std::size_t begin, std::size_t end) {
        for (std::size_t row = begin; row < end; ++row)
            hashes[row] = static_cast<std::uint32_t>(SipHash(seed)(rowText(row)));
    });
    return hashes;
}

/// Rows sorted into parts by the first bits of their hashes, within each part in the order of the list. A
/// part is small enough to be worked on in the processor's cache: one table for millions of rows would cost a
/// miss for each.
class Parts {
public:
    struct Entry {
        std::uint32_t hash;
        std::uint32_t row;
    };

    Parts(const std::vector<std::uint32_t>& hashes, const std::function<void()>& betweenBlocks)
        : m_bits(std::min<std::size_t>(std::bit_width(hashes.size() / usualPartSize), 10))
        , m_ends(std::size_t{ 1 } << m_bits)
        , m_entries(std::make_unique_for_overwrite<Entry[]>(hashes.size()))
    {
        for (const std::uint32_t hash : hashes)
            ++m_ends[partOf(hash)];
        std::exclusive_scan(m_ends.begin(), m_ends.end(), m_ends.begin(), std::size_t{ 0 });
        forEachBlock(hashes.size(), betweenBlocks, [&](std::size_t begin, std::size_t end) {
            for (std::size_t row = begin; row < end; ++row)
                m_entries[m_ends[partOf(hashes[row])]++] = { hashes[row], static_cast<std::uint32_t>(row) };
        });
    }

    std::size_t count() const { return m_ends.size(); }

    std::span<const Entry> operator[](std::size_t part) const
    {
        const std::size_t begin = part == 0 ? 0 : m_ends[part - 1];
        return { m_entries.get() + begin, m_ends[part] - begin };
    }

    /// The bits of the hash that tell the rows of one part from each other, moved to the top.
    std::uint32_t withinPart(std::uint32_t hash) const { return hash << m_bits; }

private:
    static constexpr std::size_t usualPartSize = 32768;

    std::size_t partOf(std::uint32_t hash) const { return std::uint64_t{ hash } << m_bits >> 32; }

    std::size_t m_bits;
    /// Where each part ends in m_entries.
    std::vector<std::size_t> m_ends;
    std::unique_ptr<Entry[]> m_entries;
};

/// Sets links[row] to the number plus 1 of the first row with the same hash if that stands before the row,
/// else to 0.
void linkToFirstOfHash(
    const Parts& parts, std::vector<std::uint32_t>& links, const std::function<void()>& betweenBlocks)
{
    // Open addressing with linear probing. Slots hold the row's number plus 1, and 0 if they are empty.
    std::vector<Parts::Entry> slots;
    for (std::size_t part = 0; part < parts.count(); ++part) {
        const std::span<const Parts::Entry> entries = parts[part];
        const std::size_t slotCount = entries.size() + entries.size() * 2 / 3 + 1;
        slots.assign(slotCount, { 0, 0 });
        forEachBlock(entries.size(), betweenBlocks, [&](std::size_t begin, std::size_t end) {
            for (const auto& [hash, row] : entries.subspan(begin, end - begin)) {
                std::size_t slot = std::uint64_t{ parts.withinPart(hash) } * slotCount >> 32;
                while (slots[slot].row != 0 && slots[slot].hash != hash)
                    slot = slot + 1 == slotCount ? 0 : slot + 1;
                links[row] = slots[slot].row;
                if (slots[slot].row == 0)
                    slots[slot] = { hash, row + 1 };
            }
        });
    }
}

/// Settles by their texts whether rows of equal hash are equal.
class TextComparison {
public:
    explicit TextComparison(const RowText& rowText)
        : m_rowText(rowText)
    {
    }

    /// Whether the row is the first of its kind. `earlier` is the first row with its hash. To be asked in the
    /// order of the rows.
    bool isFirst(std::size_t row, std::size_t earlier)
    {
        const std::string_view text = m_rowText(row);
        if (equalIgnoringCase(text, m_rowText(earlier)))
            return false;
        std::vector<std::size_t>& others = m_othersOfHash[earlier];
        const auto isEqual = [&](std::size_t other) { return equalIgnoringCase(text, m_rowText(other)); };
        if (std::any_of(others.begin(), others.end(), isEqual))
            return false;
        others.push_back(row);
        return true;
    }

private:
    const RowText& m_rowText;
    /// By the first row of a hash: rows that differ from it and from each other in spite of the same hash.
    std::unordered_map<std::size_t, std::vector<std::size_t>> m_othersOfHash;
};

/// For a text of up to 64 bytes that is wanted soon.
void prefetch(std::string_view text)
{
    __builtin_prefetch(text.data());
    __builtin_prefetch(text.data() + text.size());
}

} // namespace

HashSeed processHashSeed()
{
    static const HashSeed seed = [] {
        std::random_device random;
        std::uniform_int_distribution<std::uint64_t> any;
        return HashSeed{ any(random), any(random) };
    }();
    return seed;
}

std::vector<unsigned char> findFirstRows(
    std::size_t rowCount, const RowText& rowText, const std::function<void()>& betweenBlocks, HashSeed seed)
{
    if (rowCount > 4'000'000'000)
        throw std::length_error("There are too many rows to look for duplicates.");

    std::vector<std::uint32_t> links = hashRows(rowCount, rowText, seed, betweenBlocks);
    {
        // Once the parts hold the hashes, the memory serves for the links.
        const Parts parts(links, betweenBlocks);
        linkToFirstOfHash(parts, links, betweenBlocks);
    }

    TextComparison comparison(rowText);
    std::vector<unsigned char> isFirst(rowCount, 1);
    forEachBlock(rowCount, betweenBlocks, [&](std::size_t begin, std::size_t end) {
        // Put together without a branch, as which rows are linked cannot be predicted.
        std::array<std::size_t, blockSize> linkedRows;
        std::size_t linkedCount = 0;
        for (std::size_t row = begin; row < end; ++row) {
            linkedRows[linkedCount] = row;
            linkedCount += links[row] != 0 ? 1U : 0U;
        }
        const auto linked = std::span(linkedRows).first(linkedCount);
        // The earlier rows lie anywhere: they are fetched together and not waited for one after the other.
        for (const std::size_t row : linked)
            prefetch(rowText(links[row] - 1));
        for (const std::size_t row : linked)
            isFirst[row] = comparison.isFirst(row, links[row] - 1) ? 1 : 0;
    });
    return isFirst;
}

} // namespace quilvane
