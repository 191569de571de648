// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/survivors.h"

#include "scan/pictureName.h"

#include <algorithm>
#include <span>

namespace quilvane {

std::vector<unsigned char> findSurvivors(
    std::size_t rowCount, const DuplicateFinder::RowText& rowText, const std::function<void()>& betweenBlocks)
{
    constexpr std::size_t blockSize = 256;
    std::vector<unsigned char> survives(rowCount);
    DuplicateFinder duplicates(rowCount, rowText);
    for (std::size_t begin = 0; begin < rowCount; begin += blockSize) {
        const std::size_t end = std::min(begin + blockSize, rowCount);
        duplicates.mark(std::span(survives).subspan(begin, end - begin));
        // A picture's name equals other pictures' names only, so it may go in the same pass.
        for (std::size_t row = begin; row < end; ++row) {
            if (looksLikePictureName(rowText(row)))
                survives[row] = 0;
        }
        betweenBlocks();
    }
    return survives;
}

} // namespace quilvane
