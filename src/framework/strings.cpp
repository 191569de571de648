// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/strings.h"

#include "framework/exceptions.h"

namespace quilvane {

std::string Chr(int code)
{
    constexpr int asciiCount = 128;
    if (code < 0 || code >= asciiCount)
        throw OutOfBoundsException("ASCII character", static_cast<std::size_t>(code), asciiCount);
    return std::string(1, static_cast<char>(code));
}

std::vector<std::string> Split(std::string_view text, std::string_view separator)
{
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    if (!separator.empty()) {
        for (std::size_t end = 0; (end = text.find(separator, begin)) != std::string_view::npos;
             begin = end + separator.size())
            pieces.emplace_back(text.substr(begin, end - begin));
    }
    pieces.emplace_back(text.substr(begin));
    return pieces;
}

} // namespace quilvane
