// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/pdf/pageText.h"

#include "text/addressCharacters.h"
#include "text/ascii.h"

#include <algorithm>
#include <cstddef>

namespace quilvane {

namespace {

bool isDomainCharacter(char c)
{
    return isLetter(c) || isDigit(c) || c == '.' || c == '-';
}

/// Whether a domain that begins `text` has a name, a dot and a top level of two letters or more, whatever
/// follows: "example.com-" does, "example.c" and "example.co1" do not.
bool beginsWithWholeDomain(std::string_view text)
{
    for (std::size_t dot = text.find('.', 1); dot != std::string_view::npos; dot = text.find('.', dot + 1)) {
        std::size_t end = dot + 1;
        while (end < text.size() && isLetter(text[end]))
            ++end;
        const bool endsAWord = end == text.size() || !(isDigit(text[end]) || text[end] == '_');
        if (end - dot > 2 && endsAWord)
            return true;
    }
    return false;
}

/// Whether `text` ends in an incomplete address: an @ and the beginning of a domain, or nothing after the @.
bool endsInUnfinishedAddress(std::string_view text)
{
    std::size_t begin = text.size();
    const std::size_t farthest = text.size() - std::min(text.size(), longestAddress);
    while (begin > farthest && isDomainCharacter(text[begin - 1]))
        --begin;
    return begin > farthest && text[begin - 1] == '@' && !beginsWithWholeDomain(text.substr(begin));
}

/// Whether the line break between `before` and `after` stands inside an address.
bool breaksAddress(std::string_view before, std::string_view after)
{
    if (before.empty() || after.empty())
        return false;
    // A sentence may end in the dot, and the next one then begins with a capital.
    const char last = before.back();
    const bool goesOn
        = last == '.' ? isLowerLetter(after.front()) : isLetter(after.front()) || isDigit(after.front());
    return goesOn && (last == '@' || last == '.' || last == '-') && endsInUnfinishedAddress(before);
}

} // namespace

std::string tidyPageText(std::string_view text)
{
    if (text.ends_with('\f'))
        text.remove_suffix(1);
    const std::string plain = withPlainCharacters(text);
    std::string tidy;
    tidy.reserve(plain.size());
    std::string_view rest = plain;
    for (std::size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
        tidy.append(rest, 0, end);
        rest.remove_prefix(end + 1);
        if (!breaksAddress(tidy, rest))
            tidy += '\n';
    }
    tidy += rest;
    return tidy;
}

} // namespace quilvane
