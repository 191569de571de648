// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/fieldText.h"

#include "text/ascii.h"

#include <algorithm>
#include <charconv>

namespace quilvane {

namespace {

constexpr std::string_view blanks = " \t\n";
constexpr std::string_view mailScheme = "mailto:";

std::string_view withoutLeading(std::string_view text, std::string_view characters)
{
    return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

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

} // namespace

std::string mailTarget(std::string_view target)
{
    if (!equalsIgnoringCase(target.substr(0, mailScheme.size()), mailScheme))
        return {};
    return percentDecoded(target.substr(mailScheme.size()));
}

std::string fieldText(std::string_view code)
{
    code = withoutLeading(code, blanks);
    const std::string_view kind = code.substr(0, code.find_first_of(" \t\n\""));
    if (equalsIgnoringCase(kind, "HYPERLINK")) {
        const std::string_view argument = withoutLeading(code.substr(kind.size()), " \t\n\"");
        return mailTarget(argument.substr(0, argument.find_first_of("\" \t\n")));
    }
    return code.find('@') == std::string_view::npos ? std::string() : std::string(code);
}

} // namespace quilvane
