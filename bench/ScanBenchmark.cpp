// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The address scanner compared with PCRE2 and with memchr alone, on the same texts in memory.
#include "scan/AddressScanner.h"
#include "support/PatternOracle.h"
#include "support/benchText.h"
#include "support/race.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace quilvane;
using Kernel = AddressScanner::Kernel;

constexpr std::size_t megabyte = std::size_t{ 1 } << 20;

std::size_t countMatches(std::string_view text, Kernel kernel)
{
    std::size_t count = 0;
    forEachAddress(
        text, [&count](std::string_view) { ++count; }, kernel);
    return count;
}

std::size_t countBytes(std::string_view text, char wanted)
{
    std::size_t count = 0;
    const char* end = text.data() + text.size();
    for (const char* byte = text.data(); byte != end; ++count) {
        byte = static_cast<const char*>(std::memchr(byte, wanted, static_cast<std::size_t>(end - byte)));
        if (!byte)
            break;
        ++byte;
    }
    return count;
}

struct Goals {
    /// The scanner's speed divided by memchr's must be at least this. 0: no goal.
    double byMemchr;
    /// The same for PCRE2.
    double byPattern;
};

void printRatio(const char* of, double ratio, double goal)
{
    if (goal == 0)
        std::printf("    %-40s %8.2f\n", of, ratio);
    else
        std::printf("    %-40s %8.2f   goal %5.2f  %s\n", of, ratio, goal, verdict(ratio >= goal));
}

void compareOn(BenchText kind, std::size_t bytes, Goals goals)
{
    const std::string text = makeBenchText(kind, bytes);
    const PatternOracle pattern(PatternOracle::addressPattern);
    std::vector<Contender> contenders{
        { "memchr to each '@'", [&] { return countBytes(text, '@'); } },
        { "memchr for a byte that is not there", [&] { return countBytes(text, '\1'); } },
        { "PCRE2-JIT", [&] { return pattern.findAll(text).size(); } },
        { "scanner, scalar", [&] { return countMatches(text, Kernel::Scalar); } },
    };
    if (AddressScanner::isSupported(Kernel::Avx2))
        contenders.push_back({ "scanner, AVX2", [&] { return countMatches(text, Kernel::Avx2); } });
    race(contenders, 15);

    std::printf("%s, %zu MB\n", nameOf(kind).data(), bytes / megabyte);
    for (const Contender& contender : contenders) {
        std::printf("  %-42s %9.3f ms %8.2f GB/s %9zu found\n", contender.name.c_str(),
            contender.fastestSeconds * 1e3, static_cast<double>(bytes) / contender.fastestSeconds * 1e-9,
            contender.result);
    }
    const auto ratioTo = [&](std::size_t index) {
        return contenders[index].fastestSeconds / contenders.back().fastestSeconds;
    };
    printRatio("speed by memchr to each '@'", ratioTo(0), goals.byMemchr);
    printRatio("speed by memchr for a missing byte", ratioTo(1), 0);
    printRatio("speed by PCRE2-JIT", ratioTo(2), goals.byPattern);
}

/// Fills the processor's caches with other bytes, so that a small text has no advantage over a large one.
void emptyCaches()
{
    static std::vector<char> other(128 * megabyte);
    for (char& byte : other)
        byte = static_cast<char>(byte + 1);
}

void printDoublings(BenchText kind)
{
    constexpr double goal = 2.5;
    std::vector<std::string> texts;
    for (std::size_t megabytes = 1; megabytes <= 64; megabytes *= 2)
        texts.push_back(makeBenchText(kind, megabytes * megabyte));
    std::vector<Contender> sizes;
    for (const std::string& text : texts)
        sizes.push_back({ "scanner", [&] { return countMatches(text, AddressScanner::fastestKernel()); } });
    race(sizes, 15, emptyCaches);

    std::printf("  %-8s %9.3f ms", nameOf(kind).data(), sizes.front().fastestSeconds * 1e3);
    double worst = 0;
    for (std::size_t i = 1; i < sizes.size(); ++i) {
        const double ratio = sizes[i].fastestSeconds / sizes[i - 1].fastestSeconds;
        std::printf(" %6.2f", ratio);
        worst = std::max(worst, ratio);
    }
    std::printf("   worst %5.2f  goal %.1f  %s\n", worst, goal, verdict(worst <= goal));
}

} // namespace

int main()
{
    compareOn(BenchText::Prose, 256 * megabyte, { 0.95, 30 });
    compareOn(BenchText::Contacts, 256 * megabyte, { 0.8, 8 });
    compareOn(BenchText::DotsOnly, megabyte, { 0, 0 });
    compareOn(BenchText::AtsOnly, megabyte, { 0, 0 });

    std::puts("time for 1 MB out of the caches, then by what it grows as the text doubles up to 64 MB");
    for (const BenchText kind :
        { BenchText::DotsOnly, BenchText::AtsOnly, BenchText::DigitLabels, BenchText::LongRuns })
        printDoublings(kind);
}
