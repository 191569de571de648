// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/survivors.h"

#include "scan/pictureName.h"

namespace quilvane {

std::vector<unsigned char> findSurvivors(
    std::size_t rowCount, const RowText& rowText, const std::function<void()>& betweenBlocks)
{
    // A picture's name equals other pictures' names only, so it may stand among the rows that are compared.
    std::vector<unsigned char> survives = findFirstRows(rowCount, rowText, betweenBlocks);
    for (std::size_t row = 0; row < rowCount; ++row) {
        if (survives[row] != 0 && looksLikePictureName(rowText(row)))
            survives[row] = 0;
        if (row % 256 == 255)
            betweenBlocks();
    }
    return survives;
}

} // namespace quilvane
