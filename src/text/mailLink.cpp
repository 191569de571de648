// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/mailLink.h"

#include "text/addressCharacters.h"
#include "text/ascii.h"

#include <algorithm>
#include <charconv>

namespace quilvane {

namespace {

bool isAddressCharacter(char c)
{
    return isLetter(c) || isDigit(c) || std::string_view("._%+-@").find(c) != std::string_view::npos;
}

} // namespace

std::string percentDecoded(std::string_view text)
{
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = 0;
        const std::string_view digits = text.substr(i + 1, 2);
        if (text[i] == '%' && digits.size() == 2
            && std::from_chars(digits.data(), digits.data() + 2, byte, 16).ptr == digits.data() + 2) {
            decoded += static_cast<char>(byte);
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

std::string mailTarget(std::string_view link)
{
    constexpr std::string_view scheme = "mailto:";
    if (!beginsIgnoringCase(link, scheme))
        return {};
    return withPlainCharacters(percentDecoded(link.substr(scheme.size())));
}

bool isTailOfAddress(std::string_view target, std::string_view text, std::size_t at)
{
    target = target.substr(0, target.find('?')); // a subject and the like follow the question mark
    if (at > text.size() || target.empty())
        return false;
    std::size_t begin = at;
    std::size_t end = at;
    while (begin > 0 && at - begin < longestAddress && isAddressCharacter(text[begin - 1]))
        --begin;
    while (end < text.size() && end - at < longestAddress && isAddressCharacter(text[end]))
        ++end;
    while (end > begin && text[end - 1] == '.') // the end of a sentence
        --end;
    const std::string_view address = text.substr(begin, end - begin);
    return address.size() > target.size()
        && equalsIgnoringCase(address.substr(address.size() - target.size()), target);
}

} // namespace quilvane
