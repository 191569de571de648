// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/DuplicateIndex.h"

#include "scan/pictureName.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>
#include <numeric>
#include <random>
#include <stdexcept>
#include <utility>

#include <sys/mman.h>

namespace quilvane {

namespace {

/// Makes those of the eight bytes lower-case that are ASCII capital letters.
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

/// Up to eight bytes, case-folded; missing ones are zeros.
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
/// Without the key nobody can make texts that collide.
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

/// Zeroed memory, to be freed with free(). A large table is in huge pages if the system has them: to map
/// small pages one by one would take half as long as all the work in them.
void* allocateTable(std::size_t bytes)
{
    constexpr std::uintptr_t pageSize = 4096;
    constexpr std::size_t large = std::size_t{ 32 } << 20; // from the system and not from the heap
    void* memory = std::calloc(bytes, 1);
    if (!memory)
        throw std::bad_alloc();
    const std::uintptr_t toPage = -reinterpret_cast<std::uintptr_t>(memory) % pageSize;
    if (bytes > large) // a hint: it may fail
        ::madvise(static_cast<char*>(memory) + toPage, (bytes - toPage) / pageSize * pageSize, MADV_HUGEPAGE);
    return memory;
}

/// For a text of up to 64 bytes that is needed soon.
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

void DuplicateIndex::forget()
{
    m_slots.reset();
    m_slotCount = 0;
    m_usedSlots = 0;
    m_knownRows = 0;
}

template <typename IsWanted>
std::size_t DuplicateIndex::find(std::uint32_t hash, IsWanted isWanted) const
{
    std::size_t place = placeOf(hash);
    while (m_slots[place].rowPlusOne != 0 && !(m_slots[place].hash == hash && isWanted(m_slots[place])))
        place = place + 1 == m_slotCount ? 0 : place + 1;
    return place;
}

/// Makes room for so many rows in all.
void DuplicateIndex::reserve(std::size_t rows)
{
    if (rows * 4 > m_slotCount * 3)
        resizeFor(rows);
}

void DuplicateIndex::resizeFor(std::size_t rows)
{
    constexpr std::size_t mostSlots = 0xffffffff; // the arithmetic of placeOf()
    const std::size_t newCount = std::min(rows + rows * 2 / 3 + 16, mostSlots);
    if (newCount == m_slotCount)
        return;
    std::unique_ptr<Slot[], Free> old(static_cast<Slot*>(allocateTable(newCount * sizeof(Slot))));
    std::swap(m_slots, old);
    const std::size_t oldCount = std::exchange(m_slotCount, newCount);
    for (const Slot& slot : std::span(old.get(), oldCount)) {
        if (slot.rowPlusOne != 0)
            m_slots[find(slot.hash, [](const Slot&) { return false; })] = slot;
    }
}

DuplicateIndex::Pass::Pass(DuplicateIndex& index, std::size_t rowCount, RowText rowText)
    : m_index(index)
    , m_rowText(std::move(rowText))
    , m_firstRow(index.m_knownRows)
    , m_isSmall(rowCount - m_firstRow < m_firstRow / 16)
    , m_phaseSize(rowCount - m_firstRow)
{
    constexpr std::size_t usualPartSize = 16384;
    if (rowCount > 4'000'000'000)
        throw std::length_error("There are too many rows to look for duplicates.");
    m_partBits = m_isSmall ? 0 : std::min<std::size_t>(std::bit_width(rowCount / usualPartSize), 10);
    m_partEnds.resize(std::size_t{ 1 } << m_partBits);
    m_stays.resize(m_phaseSize);
    m_rows = std::make_unique_for_overwrite<std::uint32_t[]>(m_phaseSize);
}

DuplicateIndex::Pass::~Pass()
{
    if (m_phase != Phase::Done)
        m_index.forget();
}

bool DuplicateIndex::Pass::step()
{
    constexpr std::size_t stepSize = 16384;
    const std::size_t begin = m_next;
    m_next = std::min(begin + stepSize, m_phaseSize);
    switch (m_phase) {
    case Phase::Hash:
        hash(begin, m_next);
        break;
    case Phase::Sort:
        sort(begin, m_next);
        break;
    case Phase::Link:
        link(begin, m_next);
        break;
    case Phase::Settle:
        settle(begin, m_next);
        break;
    case Phase::Renumber:
        renumber(begin, m_next);
        break;
    case Phase::Done:
        return false;
    }
    if (m_next == m_phaseSize)
        startNextPhase();
    return true;
}

void DuplicateIndex::Pass::startNextPhase()
{
    m_next = 0;
    switch (m_phase) {
    case Phase::Hash: {
        m_phase = Phase::Sort;
        const std::size_t count = std::accumulate(m_partEnds.begin(), m_partEnds.end(), std::size_t{ 0 });
        std::exclusive_scan(m_partEnds.begin(), m_partEnds.end(), m_partEnds.begin(), std::size_t{ 0 });
        m_entries = std::make_unique_for_overwrite<Entry[]>(count);
        break;
    }
    case Phase::Sort:
        m_phase = Phase::Link;
        m_phaseSize = m_partEnds.back();
        if (!m_isSmall)
            m_index.reserve(m_index.m_usedSlots + expectedNewRows());
        break;
    case Phase::Link:
        m_phase = Phase::Settle;
        m_phaseSize = m_stays.size();
        m_entries.reset();
        break;
    case Phase::Settle: {
        m_phase = Phase::Renumber;
        std::uint32_t number = static_cast<std::uint32_t>(m_firstRow);
        for (std::size_t i = 0; i < m_stays.size(); ++i) {
            m_rows[i] = number;
            number += m_stays[i];
        }
        m_index.m_knownRows = number;
        // If no row goes, all rows keep their numbers.
        if (number == m_firstRow + m_stays.size())
            m_phaseSize = 0;
        else if (!m_isSmall)
            m_phaseSize = m_index.m_slotCount;
        break;
    }
    case Phase::Renumber:
        m_phase = Phase::Done;
        break;
    case Phase::Done:
        break;
    }
}

void DuplicateIndex::Pass::hash(std::size_t begin, std::size_t end)
{
    for (std::size_t i = begin; i < end; ++i) {
        const std::string_view text = m_rowText(m_firstRow + i);
        const std::uint32_t hash = hashOf(text);
        const bool isPicture = looksLikePictureName(text);
        m_rows[i] = hash;
        m_partEnds[partOf(hash)] += isPicture ? 0U : 1U;
        m_stays[i] = isPicture ? 0 : 1;
    }
}

void DuplicateIndex::Pass::sort(std::size_t begin, std::size_t end)
{
    for (std::size_t i = begin; i < end; ++i) {
        if (m_stays[i] != 0)
            m_entries[m_partEnds[partOf(m_rows[i])]++]
                = { m_rows[i], static_cast<std::uint32_t>(m_firstRow + i) };
    }
}

/// Estimates, rather too high than too low, how many of the entries will be new in the index. Equal rows are
/// in the same part, so the first part is a sample for all.
std::size_t DuplicateIndex::Pass::expectedNewRows() const
{
    constexpr std::size_t few = std::size_t{ 1 } << 18; // a table for all takes less than four megabytes
    if (m_phaseSize < few)
        return m_phaseSize;
    const std::size_t sampleSize = m_partEnds.front();
    std::vector<std::uint32_t> hashes(sampleSize);
    std::transform(m_entries.get(), m_entries.get() + sampleSize, hashes.begin(),
        [](const Entry& entry) { return entry.hash; });
    std::sort(hashes.begin(), hashes.end());
    hashes.erase(std::unique(hashes.begin(), hashes.end()), hashes.end());
    const auto isNew = [this](std::uint32_t hash) {
        return m_index.m_slotCount == 0
            || m_index.m_slots[m_index.find(hash, [](const Slot&) { return true; })].rowPlusOne == 0;
    };
    const auto count = static_cast<std::size_t>(std::count_if(hashes.begin(), hashes.end(), isNew));
    // In percent, plus five percent, since it is a sample.
    return m_phaseSize / 100 * (count * 100 / std::max<std::size_t>(sampleSize, 1) + 5);
}

void DuplicateIndex::Pass::link(std::size_t begin, std::size_t end)
{
    m_index.reserve(m_index.m_usedSlots + (end - begin));
    for (const auto& [hash, row] : std::span(m_entries.get() + begin, end - begin)) {
        Slot& slot = m_index.m_slots[m_index.find(hash, [](const Slot&) { return true; })];
        m_rows[row - m_firstRow] = slot.rowPlusOne;
        if (slot.rowPlusOne == 0) {
            slot = { hash, row + 1 };
            ++m_index.m_usedSlots;
        }
    }
}

void DuplicateIndex::Pass::settle(std::size_t begin, std::size_t end)
{
    constexpr std::size_t blockSize = 256;
    for (; begin < end; begin += blockSize) {
        // Collected without a branch, since it can't be predicted which rows are linked.
        std::array<std::size_t, blockSize> linkedRows;
        std::size_t linkedCount = 0;
        for (std::size_t i = begin; i < std::min(begin + blockSize, end); ++i) {
            linkedRows[linkedCount] = i;
            linkedCount += m_stays[i] != 0 && m_rows[i] != 0 ? 1U : 0U;
        }
        const auto linked = std::span(linkedRows).first(linkedCount);
        // The earlier rows may be anywhere in memory: all are prefetched, instead of waiting for one after
        // the other.
        for (const std::size_t i : linked)
            prefetch(m_rowText(m_rows[i] - 1));
        for (const std::size_t i : linked)
            m_stays[i] = equalsKnownRow(m_firstRow + i, m_rows[i] - 1) ? 0 : 1;
    }
}

/// Whether an earlier row that stays equals `row`; if not, adds `row` to the index. `candidate` is the first
/// row with the same hash.
bool DuplicateIndex::Pass::equalsKnownRow(std::size_t row, std::size_t candidate)
{
    const std::string_view text = m_rowText(row);
    if (equalIgnoringCase(text, m_rowText(candidate)))
        return true;
    const std::uint32_t hash = hashOf(text);
    m_index.reserve(m_index.m_usedSlots + 1);
    Slot& slot = m_index.m_slots[m_index.find(
        hash, [&](const Slot& other) { return equalIgnoringCase(text, m_rowText(other.rowPlusOne - 1)); })];
    if (slot.rowPlusOne != 0)
        return true;
    slot = { hash, static_cast<std::uint32_t>(row + 1) };
    ++m_index.m_usedSlots;
    return false;
}

void DuplicateIndex::Pass::renumber(std::size_t begin, std::size_t end)
{
    if (m_isSmall) {
        for (std::size_t i = begin; i < end; ++i) {
            if (m_stays[i] == 0)
                continue;
            const std::size_t row = m_firstRow + i;
            const auto isRow = [row](const Slot& slot) { return slot.rowPlusOne == row + 1; };
            m_index.m_slots[m_index.find(hashOf(m_rowText(row)), isRow)].rowPlusOne = m_rows[i] + 1;
        }
        return;
    }
    for (Slot& slot : std::span(m_index.m_slots.get() + begin, end - begin)) {
        if (slot.rowPlusOne > m_firstRow)
            slot.rowPlusOne = m_rows[slot.rowPlusOne - 1 - m_firstRow] + 1;
    }
}

std::uint32_t DuplicateIndex::Pass::hashOf(std::string_view text) const
{
    return static_cast<std::uint32_t>(SipHash(m_index.m_seed)(text));
}

} // namespace quilvane
