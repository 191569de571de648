// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/ascii.h"

#include <algorithm>

namespace quilvane {

std::string lowerCased(std::string_view text)
{
    std::string result(text);
    for (char& c : result)
        c = lowerCased(c);
    return result;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
        [](char a, char b) { return lowerCased(a) == lowerCased(b); });
}

std::string_view withoutLeading(std::string_view text, std::string_view characters)
{
    return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

} // namespace quilvane
