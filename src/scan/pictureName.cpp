// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/pictureName.h"

#include <cstddef>

namespace quilvane {

bool looksLikePictureName(std::string_view row)
{
    const auto lower = [row](std::size_t i) { return row[i] | 0x20; };

    // The place of the last letter in the leftmost match that is still possible. The byte there tells how far
    // the next possible match is, since no letter occurs twice.
    std::size_t last = 3;
    while (last < row.size()) {
        switch (lower(last)) {
        case 'p':
            last += 2;
            break;
        case 'n':
            last += 1;
            break;
        case 'g':
            if (lower(last - 1) == 'n' && lower(last - 2) == 'p' && row[last - 3] != '\n')
                return true;
            [[fallthrough]];
        default:
            last += 3;
        }
    }
    return false;
}

} // namespace quilvane
