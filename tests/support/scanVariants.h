// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scan/AddressScanner.h"
#include "scan/TextPieces.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

inline std::vector<AddressScanner::Kernel> supportedKernels()
{
    std::vector<AddressScanner::Kernel> kernels{ AddressScanner::Kernel::Scalar };
    if (AddressScanner::isSupported(AddressScanner::Kernel::Avx2))
        kernels.push_back(AddressScanner::Kernel::Avx2);
    return kernels;
}

inline std::vector<std::string_view> scanWhole(std::string_view text, AddressScanner::Kernel kernel)
{
    std::vector<std::string_view> matches;
    forEachAddress(
        text, [&matches](std::string_view match) { matches.push_back(match); }, kernel);
    return matches;
}

/// Scans the text as a stream; every read fills the whole room.
inline std::vector<std::string> scanInPieces(
    std::string_view text, std::size_t pieceSize, AddressScanner::Kernel kernel)
{
    std::vector<std::string> matches;
    const auto scan = [&](std::string_view piece) {
        const auto found = scanWhole(piece, kernel);
        matches.insert(matches.end(), found.begin(), found.end());
    };
    TextPieces pieces(pieceSize);
    while (!text.empty()) {
        const std::span<char> room = pieces.room();
        const std::size_t size = text.copy(room.data(), room.size());
        text.remove_prefix(size);
        scan(pieces.take(size));
    }
    scan(pieces.rest());
    return matches;
}

/// Whether both are the same views into the same text.
inline bool samePlaces(const std::vector<std::string_view>& a, const std::vector<std::string_view>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
        [](std::string_view x, std::string_view y) { return x.data() == y.data() && x.size() == y.size(); });
}

} // namespace quilvane
