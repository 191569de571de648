// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/AddressScanner.h"
#include "support/PatternOracle.h"
#include "support/scanVariants.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

namespace {

using Kernel = AddressScanner::Kernel;
using Texts = std::vector<std::string>;

const std::string l31(31, 'l');
const std::string l32(32, 'l');
const std::string l33(33, 'l');

struct Case {
    std::string text;
    Texts matches;
};

const std::vector<Case> cases{
    { "", {} },
    { "@", {} },
    { "Write to Ann.Lee+x@Mail.Example.ORG.", { "Ann.Lee+x@Mail.Example.ORG" } },
    { "a@b.com,b@c.de\tc@d.fr", { "a@b.com", "b@c.de", "c@d.fr" } },
    { "a@localhost b@c.d e@f.g.h", {} },
    // The last label and what follows it.
    { "a@b.com_", {} },
    { "a@b.com1", {} },
    { "a@b.com-", { "a@b.com" } },
    { "a@b.com%", { "a@b.com" } },
    { "a@b.com\xc3\xa4", { "a@b.com" } },
    { "a@b.co.c1", { "a@b.co" } },
    { "a@b.co.c", { "a@b.co" } },
    { "a@b.co1.de_", {} },
    { "a@b.co..", { "a@b.co" } },
    { "icon@2x.png", { "icon@2x.png" } },
    // What stands for the domain before the last dot.
    { "a@.co", {} },
    { "a@..co", { "a@..co" } },
    { "a@-.co", { "a@-.co" } },
    { "a@1.co", { "a@1.co" } },
    { "a@_.co", {} },
    // Where the local part begins.
    { "...x@y.org", { "x@y.org" } },
    { "x...@y.org", { "x...@y.org" } },
    { "_@y.org", { "_@y.org" } },
    { "%%@b.co", {} },
    { "\xc3\xa4x@y.org", { "x@y.org" } },
    { "\xc3\xa4.x@y.org", { "x@y.org" } },
    { "x\xff@y.org", {} },
    // Right behind a match a local part may begin on any of its bytes, but not on an '@'.
    { "a@b.com-x@y.org", { "a@b.com", "-x@y.org" } },
    { "a@b.com-@y.org", { "a@b.com", "-@y.org" } },
    { "a@b.com.x@y.org", { "a@b.com", ".x@y.org" } },
    { "a@b.com%+@y.org+@z.de", { "a@b.com", "%+@y.org", "+@z.de" } },
    { "a@b.com@y.org", { "a@b.com" } },
    { "a@b.com @y.org -x@y.org", { "a@b.com", "x@y.org" } },
    { "a@b@c.de", { "b@c.de" } },
    { "a@@b.co", {} },
    // Runs as long as the bytes that are looked at together, and one less and more.
    { l31 + "@b.com", { l31 + "@b.com" } },
    { l32 + "@b.com", { l32 + "@b.com" } },
    { "." + l31 + "@b.com", { l31 + "@b.com" } },
    { "." + l33 + "@b.com", { l33 + "@b.com" } },
    { "a@b.com-" + l31 + "@y.org", { "a@b.com", "-" + l31 + "@y.org" } },
    { "a@b.com-" + l33 + "@y.org", { "a@b.com", "-" + l33 + "@y.org" } },
    { "a@b." + l31, { "a@b." + l31 } },
    { "a@" + l31 + ".de", { "a@" + l31 + ".de" } },
    { "a@" + l33 + ".de_", {} },
    { "a@b.de." + l33 + "1", { "a@b.de" } },
};

/// The text between bytes that no address holds, so that no '@' is near an edge.
std::string padded(const std::string& text)
{
    return std::string(70, '\n') + text + std::string(70, ' ');
}

Texts scanned(std::string_view text, Kernel kernel)
{
    const auto matches = scanWhole(text, kernel);
    return Texts(matches.begin(), matches.end());
}

/// Texts that are likely to be on the border between match and no match, or of what a kernel looks at at
/// once.
class NastyTexts {
public:
    explicit NastyTexts(std::uint64_t seed)
        : m_random(seed)
    {
    }

    const std::string& next()
    {
        m_text.clear();
        if (below(2) == 0)
            addRuns();
        else
            addBytes();
        return m_text;
    }

private:
    /// Bytes of a small alphabet drawn anew for each text.
    void addBytes()
    {
        std::string alphabet;
        for (auto size = 2 + below(7); size > 0; --size)
            alphabet += any("@@@...aZby09_%+-@ \n\r\x80\xff");
        for (auto size = below(below(4) == 0 ? 300 : 40); size > 0; --size)
            m_text += any(alphabet);
    }

    /// Runs of one kind of bytes.
    void addRuns()
    {
        for (auto runs = 1 + below(12); runs > 0; --runs) {
            static constexpr std::string_view kinds[] = { "a", "aZ", "ab.", "aB.-", "a0.", "a1_%+-.", ".",
                ".-%+", "ab_", " \n\x80", "c.de", "@", "@" };
            const std::string_view kind = kinds[below(std::size(kinds))];
            const auto lengthKind = below(8);
            auto size = lengthKind == 0 ? 30 + below(5) : lengthKind == 1 ? 30 + below(41) : below(4);
            if (kind == "@")
                size = 1;
            for (; size > 0; --size)
                m_text += any(kind);
            static constexpr std::string_view joints[]
                = { "", "", "", "@", "@", ".de", ".de", "@b.com", "-x@y.org" };
            m_text += joints[below(std::size(joints))];
        }
    }

    std::uint64_t below(std::uint64_t bound) { return m_random() % bound; }
    char any(std::string_view bytes) { return bytes[below(bytes.size())]; }

    std::mt19937_64 m_random;
    std::string m_text;
};

/// The first safe cut at which other matches are found than `expected`; 0 if there is none.
std::size_t cutThatChanges(
    std::string_view text, Kernel kernel, const std::vector<std::string_view>& expected)
{
    for (std::size_t cut = 1; cut < text.size(); ++cut) {
        if (isSafeCut(text, cut) && !samePlaces(scanCut(text, cut, kernel), expected))
            return cut;
    }
    return 0;
}

void expectEqualToPattern(std::uint64_t seed, int rounds)
{
    const PatternOracle oracle(PatternOracle::addressPattern);
    const std::vector<Kernel> kernels = supportedKernels();
    NastyTexts texts(seed);
    std::size_t matches = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::string& text = texts.next();
        const auto expected = oracle.findAll(text);
        matches += expected.size();
        for (const Kernel kernel : kernels) {
            ASSERT_TRUE(samePlaces(scanWhole(text, kernel), expected)) << testing::PrintToString(text);
            if (round % 16 == 0) {
                ASSERT_EQ(cutThatChanges(text, kernel, expected), 0U) << testing::PrintToString(text);
            }
        }
    }
    EXPECT_GT(matches, static_cast<std::size_t>(rounds) / 4) << "The texts should hold many matches.";
}

/// Two readable pages between unreadable ones.
class GuardedPages {
public:
    GuardedPages()
        : m_pageSize(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)))
        , m_map(static_cast<char*>(
              mmap(nullptr, 4 * m_pageSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
        if (m_map == MAP_FAILED || mprotect(begin(), size(), PROT_READ | PROT_WRITE) != 0)
            throw std::runtime_error("no memory");
    }
    ~GuardedPages() { munmap(m_map, 4 * m_pageSize); }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    char* begin() const { return m_map + m_pageSize; }
    std::size_t size() const { return 2 * m_pageSize; }

private:
    std::size_t m_pageSize;
    char* m_map;
};

} // namespace

TEST(AddressScanner, findsTheAddressesOfEachCase)
{
    const PatternOracle oracle(PatternOracle::addressPattern);
    for (const Case& c : cases) {
        const auto expected = oracle.findAll(c.text);
        EXPECT_EQ(Texts(expected.begin(), expected.end()), c.matches) << "The case is wrong.";
        for (const Kernel kernel : supportedKernels()) {
            SCOPED_TRACE(testing::PrintToString(c.text) + (kernel == Kernel::Scalar ? " scalar" : " avx2"));
            EXPECT_EQ(scanned(c.text, kernel), c.matches);
            const std::string text = padded(c.text);
            EXPECT_EQ(scanned(text, kernel), c.matches);
            for (std::size_t pieceSize = 1; pieceSize <= text.size() + 1; ++pieceSize)
                EXPECT_EQ(scanInPieces(text, pieceSize, kernel), c.matches) << pieceSize;
        }
    }
}

TEST(AddressScanner, goesOnGivingNothingAtTheEnd)
{
    for (const Kernel kernel : supportedKernels()) {
        const std::string text = padded("a@b.com");
        AddressScanner scanner(text, kernel);
        EXPECT_EQ(scanner.next(), "a@b.com");
        EXPECT_EQ(scanner.next(), std::nullopt);
        EXPECT_EQ(scanner.next(), std::nullopt);
        EXPECT_EQ(AddressScanner({}, kernel).next(), std::nullopt);
    }
}

TEST(AddressScanner, findsWhatThePatternFinds)
{
    expectEqualToPattern(1, 6'000'000);
}

// For a change of the scanner: --gtest_also_run_disabled_tests, several minutes.
TEST(AddressScanner, DISABLED_findsWhatThePatternFindsForLong)
{
    for (std::uint64_t seed = 2; seed < 40; ++seed)
        expectEqualToPattern(seed, 2'000'000);
}

TEST(AddressScanner, readsNoByteOutsideTheText)
{
    const GuardedPages pages;
    NastyTexts texts(3);
    for (int round = 0; round < 20'000; ++round) {
        const std::string& text = texts.next();
        for (const Kernel kernel : supportedKernels()) {
            const Texts expected = scanned(text, kernel);
            for (char* place : { pages.begin(), pages.begin() + pages.size() - text.size() }) {
                std::memcpy(place, text.data(), text.size());
                ASSERT_EQ(scanned({ place, text.size() }, kernel), expected) << testing::PrintToString(text);
            }
        }
    }
}

} // namespace quilvane
