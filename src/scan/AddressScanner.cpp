// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/AddressScanner.h"

#include "scan/byteClasses.h"

#include <bit>
#include <cstddef>
#include <cstring>

#if defined(__x86_64__)
#define QUILVANE_HAS_AVX2_KERNEL 1
#include <cpuid.h>
#include <immintrin.h>
#else
#define QUILVANE_HAS_AVX2_KERNEL 0
#endif

namespace quilvane {

namespace {

/// The limits of a match.
struct Surroundings {
    const char* begin; // of the text
    const char* end;
    const char* previousMatchEnd; // `begin` if there was none
};

std::string_view viewOf(const char* begin, const char* end)
{
    return { begin, static_cast<std::size_t>(end - begin) };
}

/// The beginning of the match around the '@' at `at`: the leftmost word boundary in the run of bytes before
/// it. Null if the run has none.
const char* localPartBegin(Surroundings text, const char* at)
{
    // After a match comes no word character, so its end is a boundary and the next match may begin there with
    // any byte. Everywhere else the byte before a run is no word character.
    const char* firstWordByte = nullptr;
    const char* begin = at;
    while (begin != text.previousMatchEnd && isOf(begin[-1], ByteClass::localPart)) {
        --begin;
        if (isOf(*begin, ByteClass::word))
            firstWordByte = begin;
    }
    if (begin == text.previousMatchEnd && begin != text.begin && begin != at)
        return begin;
    return firstWordByte;
}

/// The end of the domain that begins at `domain`: it ends with the last dot that is followed by two or more
/// letters and then no word character, and those letters. Null if there is no such dot after the domain's
/// first byte.
const char* domainEnd(Surroundings text, const char* domain)
{
    const char* runEnd = domain;
    while (runEnd != text.end && isOf(*runEnd, ByteClass::domain))
        ++runEnd;

    const char* labelEnd = runEnd;
    for (const char* byte = runEnd; byte - 1 > domain;) {
        --byte;
        if (isOf(*byte, ByteClass::letter))
            continue;
        const bool isBoundary = labelEnd == text.end || !isOf(*labelEnd, ByteClass::word);
        if (*byte == '.' && labelEnd - byte > 2 && isBoundary)
            return labelEnd;
        labelEnd = byte;
    }
    return nullptr;
}

/// The match whose '@' is at `at`; empty if there is none.
std::string_view matchAround(Surroundings text, const char* at)
{
    const char* begin = localPartBegin(text, at);
    if (!begin)
        return {};
    const char* end = domainEnd(text, at + 1);
    if (!end)
        return {};
    return viewOf(begin, end);
}

#if QUILVANE_HAS_AVX2_KERNEL

/// Whether the processor counts leading zeros by one instruction. One that does not would execute another in
/// its place and give wrong results. Clang's __builtin_cpu_supports() does not know its name.
bool countsLeadingZeros()
{
    unsigned eax = 0;
    unsigned ebx = 0;
    unsigned ecx = 0;
    unsigned edx = 0;
    return __get_cpuid(0x80000001, &eax, &ebx, &ecx, &edx) != 0 && (ecx & bit_LZCNT) != 0;
}

#endif

} // namespace

bool AddressScanner::isSupported(Kernel kernel)
{
#if QUILVANE_HAS_AVX2_KERNEL
    return kernel == Kernel::Scalar
        || (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi")
            && __builtin_cpu_supports("popcnt") && countsLeadingZeros());
#else
    return kernel == Kernel::Scalar;
#endif
}

AddressScanner::Kernel AddressScanner::fastestKernel()
{
    static const Kernel fastest = isSupported(Kernel::Avx2) ? Kernel::Avx2 : Kernel::Scalar;
    return fastest;
}

AddressScanner::AddressScanner(std::string_view text, Kernel kernel)
    : m_begin(text.data())
    , m_end(text.data() + text.size())
    , m_previousMatchEnd(text.data())
    , m_unsearched(text.data())
    , m_kernel(kernel)
{
}

std::span<const std::string_view> AddressScanner::next()
{
    const std::size_t count = m_kernel == Kernel::Avx2 ? searchAvx2() : searchScalar();
    return std::span(m_matches).first(count);
}

std::size_t AddressScanner::searchScalar()
{
    Surroundings text{ m_begin, m_end, m_previousMatchEnd };
    std::size_t count = 0;
    while (m_unsearched != m_end && count < m_matches.size()) {
        const auto remaining = static_cast<std::size_t>(m_end - m_unsearched);
        const auto* at = static_cast<const char*>(std::memchr(m_unsearched, '@', remaining));
        if (!at) {
            m_unsearched = m_end;
            break;
        }
        m_unsearched = at + 1;
        if (const std::string_view match = matchAround(text, at); !match.empty()) {
            text.previousMatchEnd = match.data() + match.size();
            m_matches[count++] = match;
        }
    }
    m_previousMatchEnd = text.previousMatchEnd;
    return count;
}

#if QUILVANE_HAS_AVX2_KERNEL

#define QUILVANE_AVX2 [[gnu::target("avx2,bmi,popcnt,lzcnt")]]

namespace {

constexpr std::ptrdiff_t windowSize = 32;
constexpr std::ptrdiff_t blockSize = 64;

/// Classes of bytes for two table look-ups, one by the high and one by the low half of a byte. A byte belongs
/// to a class if both tables contain it. Letters need two classes, since not every high half goes with every
/// low half.
struct HalfClass {
    static constexpr char digit = 1; // 0x30 to 0x39
    static constexpr char lettersToO = 2; // 0x41 to 0x4f, 0x61 to 0x6f
    static constexpr char lettersFromP = 4; // 0x50 to 0x5a, 0x70 to 0x7a
    static constexpr char underscore = 8; // 0x5f
    static constexpr char dotOrDash = 16; // 0x2e, 0x2d
    static constexpr char percentOrPlus = 32; // 0x25, 0x2b

    static constexpr char letter = lettersToO | lettersFromP;
    static constexpr char word = letter | digit | underscore;
    static constexpr char domain = letter | digit | dotOrDash;
};

QUILVANE_AVX2 inline __m256i load(const char* bytes)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

/// The classes of each byte; 0 for a byte that no address holds.
QUILVANE_AVX2 inline __m256i classify(__m256i bytes)
{
    using C = HalfClass;
    constexpr char inAll = C::digit | C::lettersToO | C::lettersFromP; // low halves 1 to 9
    const __m256i lowHalf = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(C::digit | C::lettersFromP, inAll, inAll, inAll, inAll, inAll | C::percentOrPlus, inAll,
            inAll, inAll, inAll, C::letter, C::lettersToO | C::percentOrPlus, C::lettersToO,
            C::lettersToO | C::dotOrDash, C::lettersToO | C::dotOrDash, C::lettersToO | C::underscore));
    const __m256i highHalf = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 0, C::dotOrDash | C::percentOrPlus, C::digit, C::lettersToO,
            C::lettersFromP | C::underscore, C::lettersToO, C::lettersFromP, 0, 0, 0, 0, 0, 0, 0, 0));
    const __m256i highHalves = _mm256_and_si256(_mm256_srli_epi16(bytes, 4), _mm256_set1_epi8(0x0f));
    // A shuffle gives 0 where the index has its top bit set, that is for bytes above 127.
    return _mm256_and_si256(_mm256_shuffle_epi8(lowHalf, bytes), _mm256_shuffle_epi8(highHalf, highHalves));
}

/// Bit i is set if byte i belongs to none of the classes `wanted`.
QUILVANE_AVX2 inline std::uint32_t noneOf(__m256i classes, char wanted)
{
    const __m256i found = _mm256_and_si256(classes, _mm256_set1_epi8(wanted));
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(found, _mm256_setzero_si256())));
}

QUILVANE_AVX2 inline std::uint32_t equalTo(__m256i bytes, char wanted)
{
    return static_cast<std::uint32_t>(
        _mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(wanted))));
}

/// Bit i is set if byte i of the block is an '@'.
QUILVANE_AVX2 inline std::uint64_t atsIn(const char* block)
{
    const std::uint64_t low = equalTo(load(block), '@');
    const std::uint64_t high = equalTo(load(block + windowSize), '@');
    return low | high << windowSize;
}

/// Skips pairs of blocks from `bytes` on as long as they hold no '@'.
QUILVANE_AVX2 inline const char* skipBlocksWithoutAt(const char* bytes, const char* end)
{
    const __m256i at = _mm256_set1_epi8('@');
    for (; end - bytes >= 2 * blockSize; bytes += 2 * blockSize) {
        __m256i found = _mm256_cmpeq_epi8(load(bytes), at);
        for (std::ptrdiff_t i = windowSize; i < 2 * blockSize; i += windowSize)
            found = _mm256_or_si256(found, _mm256_cmpeq_epi8(load(bytes + i), at));
        if (!_mm256_testz_si256(found, found))
            break;
    }
    return bytes;
}

/// domainEnd() for a domain that ends within the window that begins with it. `classes` are those of the
/// window's bytes, and `stops` marks the bytes that can't be in a domain.
QUILVANE_AVX2 inline const char* domainEndInWindow(const char* domain, __m256i classes, std::uint32_t stops)
{
    const std::uint32_t inDomain = (stops & (0U - stops)) - 1;
    const std::uint32_t afterFirst = ~1U;
    const std::uint32_t noLetters = noneOf(classes, HalfClass::letter);
    std::uint32_t dots = equalTo(load(domain), '.') & inDomain & afterFirst;
    while (dots != 0) {
        const int dot = 31 - std::countl_zero(dots);
        const std::uint32_t afterDot = ~(0xffffffffU >> (31 - dot));
        const int labelEnd = std::countr_zero(noLetters & afterDot);
        if (labelEnd - dot > 2 && !isOf(domain[labelEnd], ByteClass::word))
            return domain + labelEnd;
        dots ^= 1U << dot;
    }
    return nullptr;
}

/// matchAround() that examines the 32 bytes on each side of the '@' at once. A match that needs more bytes is
/// left to matchAround(). Inlined, which doubles the speed where every other byte is an '@'.
QUILVANE_AVX2 [[gnu::always_inline]] inline std::string_view matchAroundAvx2(
    const Surroundings& text, const char* at)
{
    if (at - text.begin < windowSize || text.end - at <= windowSize)
        return matchAround(text, at);

    const char* domain = at + 1;
    const __m256i right = classify(load(domain));
    const std::uint32_t rightStops = noneOf(right, HalfClass::domain);
    if (rightStops == 0)
        return matchAround(text, at);
    const char* end = domainEndInWindow(domain, right, rightStops);
    if (!end)
        return {};

    const __m256i left = classify(load(at - windowSize));
    const std::uint32_t leftStops = equalTo(left, 0);
    if (leftStops == 0)
        return matchAround(text, at);
    // Bit 31 stands for the byte before the '@'.
    const std::ptrdiff_t runSize = std::countl_zero(leftStops);
    // A run that reaches back to the previous match begins there, with any byte. A run that reached back to
    // the beginning of the text would not fit into the window.
    const char* begin = text.previousMatchEnd;
    if (at - begin > runSize) {
        const std::uint32_t inRun = ~(0xffffffffU >> runSize);
        const std::uint32_t wordBytes = ~noneOf(left, HalfClass::word) & inRun;
        if (wordBytes == 0)
            return {};
        begin = at - windowSize + std::countr_zero(wordBytes);
    }
    if (begin == at)
        return {};
    return viewOf(begin, end);
}

/// Writes the place of each '@' of a block to `ats` and returns their number. `found` is the result of
/// atsIn().
QUILVANE_AVX2 [[gnu::always_inline]] inline std::size_t noteAts(
    const char* block, std::uint64_t found, const char** ats)
{
    const auto count = static_cast<std::size_t>(std::popcount(found));
    // Two are always written, even if there are fewer: a branch on their number could not be predicted.
    for (std::size_t i = 0; i < 2; ++i) {
        ats[i] = block + _tzcnt_u64(found);
        found &= found - 1;
    }
    for (std::size_t i = 2; i < count; ++i) {
        ats[i] = block + _tzcnt_u64(found);
        found &= found - 1;
    }
    return count;
}

} // namespace

QUILVANE_AVX2 std::size_t AddressScanner::searchAvx2()
{
    // In turns: first the places of some '@', then the matches around them. The turns are short, so that the
    // processor loads the text from memory all the time.
    constexpr std::size_t enough = 24;
    std::array<const char*, enough + 2 * blockSize> ats;
    static_assert(ats.size() <= decltype(m_matches)().size());
    std::size_t count = 0;
    while (count == 0 && m_end - m_unsearched >= 2 * blockSize) {
        const char* unsearched = m_unsearched;
        std::size_t atCount = 0;
        while (atCount < enough && m_end - unsearched >= 2 * blockSize) {
            const std::uint64_t first = atsIn(unsearched);
            const std::uint64_t second = atsIn(unsearched + blockSize);
            if ((first | second) == 0) {
                unsearched = skipBlocksWithoutAt(unsearched + 2 * blockSize, m_end);
                continue;
            }
            atCount += noteAts(unsearched, first, ats.data() + atCount);
            atCount += noteAts(unsearched + blockSize, second, ats.data() + atCount);
            unsearched += 2 * blockSize;
        }
        m_unsearched = unsearched;

        Surroundings text{ m_begin, m_end, m_previousMatchEnd };
        for (std::size_t i = 0; i < atCount; ++i) {
            if (const std::string_view match = matchAroundAvx2(text, ats[i]); !match.empty()) {
                text.previousMatchEnd = match.data() + match.size();
                m_matches[count++] = match;
            }
        }
        m_previousMatchEnd = text.previousMatchEnd;
    }
    return count != 0 ? count : searchScalar();
}

#else

std::size_t AddressScanner::searchAvx2()
{
    return searchScalar();
}

#endif

} // namespace quilvane
