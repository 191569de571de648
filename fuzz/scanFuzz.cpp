// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Compares the address scanner and the picture rule with PCRE2, on texts that libFuzzer makes up:
//   scanFuzz -max_len=400 -only_ascii=0 CORPUS_FOLDER
#include "scan/pictureName.h"
#include "support/PatternOracle.h"
#include "support/scanVariants.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace quilvane;

/// libFuzzer reports an abort as a fault.
void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

void compareWithPattern(std::string_view text, std::size_t pieceSize)
{
    static const PatternOracle oracle(PatternOracle::addressPattern);
    const std::vector<std::string_view> expected = oracle.findAll(text);
    for (const AddressScanner::Kernel kernel : supportedKernels()) {
        require(samePlaces(scanWhole(text, kernel), expected));
        const std::vector<std::string> inPieces = scanInPieces(text, pieceSize, kernel);
        require(std::equal(inPieces.begin(), inPieces.end(), expected.begin(), expected.end()));
    }
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): libFuzzer gives the name
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
    compareWithPattern(text, std::size_t{ data[0] } + 1);

    static const PatternOracle pictureOracle(PatternOracle::picturePattern);
    require(looksLikePictureName(text) == (pictureOracle.find(text).data() != nullptr));
    return 0;
}
