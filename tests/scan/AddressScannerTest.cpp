// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/AddressScanner.h"
#include "support/PatternOracle.h"
#include "support/scanVariants.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

using Kernel = AddressScanner::Kernel;
using Texts = std::vector<std::string>;

Texts scanned(std::string_view text, Kernel kernel)
{
    const auto matches = scanWhole(text, kernel);
    return Texts(matches.begin(), matches.end());
}

/// Texts that are likely to be at the border between match and no match, or of the bytes that a kernel
/// examines at once.
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
    /// Bytes of a small alphabet, which is chosen anew for each text.
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

} // namespace

// The pattern itself, told by hand; all else is compared with PCRE2 below.
TEST(AddressScanner, findsTheAddressesOfEachCase)
{
    std::string chain = "a@b.com";
    Texts links{ chain };
    for (int i = 0; i < 500; ++i) { // more than the scanner gives at a time
        links.push_back("-a@b.com");
        chain += links.back();
    }
    const std::pair<std::string_view, Texts> cases[] = {
        { {}, {} },
        { chain, links },
        { "@", {} },
        { "Write to Ann.Lee+x@Mail.Example.ORG.", { "Ann.Lee+x@Mail.Example.ORG" } },
        { "a@b.com,b@c.de\tc@d.fr", { "a@b.com", "b@c.de", "c@d.fr" } },
        { "a@localhost b@c.d e@f.g.h", {} },
        { "a@b.com_ a@b.com1 a@.co", {} },
        { "a@b.com- a@b.co.c a@-.co", { "a@b.com", "a@b.co", "a@-.co" } },
        { "a@b.com\xc3\xa4.x@y.org", { "a@b.com", "x@y.org" } },
        { "x...@y.org _@y.org", { "x...@y.org", "_@y.org" } },
        // Right after a match a local part may begin with any of its bytes, but not with an '@'.
        { "a@b.com-x@y.org%+@y.org", { "a@b.com", "-x@y.org", "%+@y.org" } },
        { "a@b.com@y.org a@b@c.de", { "a@b.com", "b@c.de" } },
    };
    for (const auto& [text, matches] : cases) {
        for (const Kernel kernel : supportedKernels())
            EXPECT_EQ(scanned(text, kernel), matches) << text;
    }
}

TEST(AddressScanner, findsTheMatchesOfThePattern)
{
    constexpr std::size_t rounds = 6'000'000;
    const PatternOracle oracle(PatternOracle::addressPattern);
    NastyTexts texts(1);
    std::size_t matches = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        const std::string& text = texts.next();
        const auto expected = oracle.findAll(text);
        matches += expected.size();
        for (const Kernel kernel : supportedKernels()) {
            ASSERT_TRUE(samePlaces(scanWhole(text, kernel), expected)) << testing::PrintToString(text);
            if (round % 16 == 0) {
                const Texts inPieces = scanInPieces(text, 1 + round / 16 % 64, kernel);
                ASSERT_TRUE(std::equal(inPieces.begin(), inPieces.end(), expected.begin(), expected.end()))
                    << testing::PrintToString(text);
            }
        }
    }
    EXPECT_GT(matches, rounds / 4) << "The texts should hold many matches.";
}

TEST(AddressScanner, readsNoByteOutsideTheText)
{
    // A readable page between two that can't be read.
    const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* map = mmap(nullptr, 3 * pageSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(map, MAP_FAILED);
    char* page = static_cast<char*>(map) + pageSize;
    ASSERT_EQ(mprotect(page, pageSize, PROT_READ | PROT_WRITE), 0);
    NastyTexts texts(3);
    for (int round = 0; round < 20'000; ++round) {
        const std::string& text = texts.next();
        ASSERT_LE(text.size(), pageSize);
        for (const Kernel kernel : supportedKernels()) {
            const Texts expected = scanned(text, kernel);
            for (char* place : { page, page + pageSize - text.size() }) {
                text.copy(place, text.size());
                ASSERT_EQ(scanned({ place, text.size() }, kernel), expected) << testing::PrintToString(text);
            }
        }
    }
    munmap(map, 3 * pageSize);
}

} // namespace quilvane
