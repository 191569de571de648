// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/charset.h"

#include "text/CodePageConverter.h"
#include "text/ascii.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace quilvane {

namespace {

constexpr std::string_view keyword = "charset";
constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view nameCharacters
    = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.:-";

struct Name {
    std::string_view name;
    int codePage;
};

/// Names as pages use them (WHATWG, Encoding Standard, 4.2), without '-' and '_'.
constexpr Name names[] = { { "utf8", codePages::utf8 }, { "unicode11utf8", codePages::utf8 },
    { "utf16", codePages::utf16LittleEndian }, { "utf16le", codePages::utf16LittleEndian },
    { "utf16be", codePages::utf16BigEndian }, { "usascii", codePages::westernEurope },
    { "ascii", codePages::westernEurope }, { "latin1", codePages::westernEurope },
    { "l1", codePages::westernEurope }, { "latin2", 28592 }, { "latin3", 28593 }, { "latin4", 28594 },
    { "cyrillic", 28595 }, { "arabic", 28596 }, { "greek", 28597 }, { "hebrew", 28598 }, { "latin5", 1254 },
    { "latin6", 28600 }, { "latin9", 28605 }, { "koi8", 20866 }, { "koi8r", 20866 }, { "koi8u", 21866 },
    { "koi8ru", 21866 }, { "macintosh", codePages::macintosh }, { "mac", codePages::macintosh },
    { "xmacroman", codePages::macintosh }, { "xmaccyrillic", 10007 }, { "tis620", 874 }, { "dos874", 874 },
    { "shiftjis", 932 }, { "sjis", 932 }, { "xsjis", 932 }, { "mskanji", 932 }, { "windows31j", 932 },
    { "eucjp", 51932 }, { "xeucjp", 51932 }, { "iso2022jp", 50220 }, { "gb2312", 54936 },
    { "gb231280", 54936 }, { "gbk", 54936 }, { "xgbk", 54936 }, { "chinese", 54936 }, { "gb18030", 54936 },
    { "big5", 951 }, { "big5hkscs", 951 }, { "cnbig5", 951 }, { "xxbig5", 951 }, { "euckr", 949 },
    { "korean", 949 }, { "ksc5601", 949 }, { "ksc56011987", 949 }, { "johab", 1361 } };

/// The number in "windows1251", nothing without one.
std::optional<int> numberAfter(std::string_view prefix, std::string_view name)
{
    int number = 0;
    if (!name.starts_with(prefix)
        || std::from_chars(name.data() + prefix.size(), name.data() + name.size(), number).ec != std::errc())
        return {};
    return number;
}

/// Parts of ISO 8859 for which pages really use a larger Windows code page have no converter of their own.
int codePageOfIso8859(int part)
{
    constexpr int common = 28590;
    return part == 1 ? codePages::westernEurope : part == 9 ? 1254 : part == 11 ? 874 : common + part;
}

} // namespace

std::string charsetNamedIn(std::string_view text)
{
    while (text.size() > keyword.size()) {
        if (!beginsIgnoringCase(text, keyword)) {
            text.remove_prefix(1);
            continue;
        }
        text = withoutLeading(text.substr(keyword.size()), blanks);
        if (!text.starts_with('='))
            continue;
        text = withoutLeading(text.substr(1), " \t\r\n\"'");
        return std::string(text.substr(0, text.find_first_not_of(nameCharacters)));
    }
    return {};
}

std::optional<int> codePageNamed(std::string_view name)
{
    std::string wanted = lowerCased(name);
    std::erase_if(wanted, [](char c) { return c == '-' || c == '_'; });
    const auto* found = std::find_if(
        std::begin(names), std::end(names), [&wanted](const Name& row) { return row.name == wanted; });
    if (found != std::end(names))
        return found->codePage;
    if (const std::optional<int> part = numberAfter("iso8859", wanted))
        return *part >= 1 && *part <= 16 ? std::optional(codePageOfIso8859(*part)) : std::nullopt;
    for (const std::string_view prefix : { "windows", "cp", "xcp", "ibm" })
        if (const std::optional<int> number = numberAfter(prefix, wanted))
            return number;
    return {};
}

std::string toUtf8(std::string_view bytes, int codePage)
{
    return CodePageConverter::of(codePage).toUtf8(bytes);
}

void openAllConverters()
{
    CodePageConverter::openAll();
}

} // namespace quilvane
