// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/DuplicateFinder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <random>
#include <stdexcept>
#include <utility>

namespace quilvane {

namespace {

/// Rows whose memory is fetched together, so that they wait for it once and not one after the other.
constexpr std::size_t batchSize = 64;

constexpr std::size_t maximumRowCount = 2'500'000'000;

/// At most six slots in ten are taken, and the hash, which has 32 bits, reaches them all.
std::size_t slotCountFor(std::size_t rowCount)
{
    if (rowCount > maximumRowCount)
        throw std::length_error("There are too many rows to look for duplicates.");
    return rowCount + rowCount * 2 / 3 + 1;
}

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
    explicit SipHash(DuplicateFinder::Seed key)
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

} // namespace

DuplicateFinder::Seed DuplicateFinder::processSeed()
{
    static const Seed seed = [] {
        std::random_device random;
        std::uniform_int_distribution<std::uint64_t> any;
        return Seed{ any(random), any(random) };
    }();
    return seed;
}

DuplicateFinder::DuplicateFinder(std::size_t rowCount, RowText rowText, Seed seed)
    : m_rowText(std::move(rowText))
    , m_seed(seed)
    , m_rowCount(rowCount)
    , m_slots(slotCountFor(rowCount))
{
}

void DuplicateFinder::mark(std::span<unsigned char> isFirst)
{
    if (isFirst.size() > m_rowCount - m_rowsTaken)
        throw std::length_error("There are fewer rows than were to be looked at for duplicates.");
    while (!isFirst.empty()) {
        const std::size_t size = std::min(isFirst.size(), batchSize);
        markBatch(isFirst.first(size));
        isFirst = isFirst.subspan(size);
    }
}

void DuplicateFinder::markBatch(std::span<unsigned char> isFirst)
{
    std::array<Candidate, batchSize> batch;
    const std::span candidates(batch.data(), isFirst.size());
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const std::string_view text = m_rowText(m_rowsTaken + i);
        const auto hash = static_cast<std::uint32_t>(SipHash(m_seed)(text));
        candidates[i] = { text, hash };
        __builtin_prefetch(&m_slots[homeOf(hash)]);
    }
    for (const Candidate& candidate : candidates)
        prefetchRowLike(candidate);
    for (std::size_t i = 0; i < candidates.size(); ++i)
        isFirst[i] = insert(candidates[i], m_rowsTaken + i) ? 1 : 0;
    m_rowsTaken += candidates.size();
}

/// Fetches the text that insert() will compare with the candidate's, if there is one.
void DuplicateFinder::prefetchRowLike(const Candidate& candidate) const
{
    for (std::size_t i = homeOf(candidate.hash); m_slots[i].rowPlusOne != 0; i = next(i)) {
        if (m_slots[i].hash == candidate.hash) {
            __builtin_prefetch(m_rowText(m_slots[i].rowPlusOne - 1).data());
            return;
        }
    }
}

/// Whether no row before equals the candidate, which is then entered under the number `row`.
bool DuplicateFinder::insert(const Candidate& candidate, std::size_t row)
{
    std::size_t i = homeOf(candidate.hash);
    for (; m_slots[i].rowPlusOne != 0; i = next(i)) {
        if (m_slots[i].hash == candidate.hash
            && equalIgnoringCase(m_rowText(m_slots[i].rowPlusOne - 1), candidate.text))
            return false;
    }
    m_slots[i] = { candidate.hash, static_cast<std::uint32_t>(row + 1) };
    return true;
}

std::size_t DuplicateFinder::homeOf(std::uint32_t hash) const
{
    return std::uint64_t{ hash } * m_slots.size() >> 32;
}

std::size_t DuplicateFinder::next(std::size_t slot) const
{
    return slot + 1 == m_slots.size() ? 0 : slot + 1;
}

} // namespace quilvane
