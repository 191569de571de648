// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/charset.h"

#include "text/ascii.h"
#include "text/converters.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <type_traits>

#include <iconv.h>

namespace quilvane {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD
constexpr std::string_view keyword = "charset";
constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view nameCharacters
    = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.:-";

struct CloseConverter {
    void operator()(void* converter) const { iconv_close(converter); }
};
static_assert(std::is_same_v<iconv_t, void*>);
using Converter = std::unique_ptr<void, CloseConverter>;

/// Null if the character set is not known.
Converter openConverter(const std::string& charset)
{
    const char* const name = converterName(charset);
    if (!name)
        return nullptr;
    iconv_t opened = iconv_open("UTF-8", name);
    return Converter(reinterpret_cast<std::intptr_t>(opened) == -1 ? nullptr : opened);
}

std::string_view withoutLeading(std::string_view text, std::string_view characters)
{
    return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

} // namespace

std::string charsetNamedIn(std::string_view text)
{
    while (text.size() > keyword.size()) {
        if (!equalsIgnoringCase(text.substr(0, keyword.size()), keyword)) {
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

std::string toUtf8(std::string_view bytes, const std::string& charset)
{
    Converter converter = openConverter(charset);
    if (!converter)
        converter = openConverter("UTF-8");
    char* input = const_cast<char*>(bytes.data()); // iconv does not write there
    std::size_t inputLeft = bytes.size();
    std::string text;
    text.reserve(bytes.size());
    std::array<char, 16384> buffer;
    while (inputLeft > 0) {
        char* output = buffer.data();
        std::size_t room = buffer.size();
        const bool stopped
            = iconv(converter.get(), &input, &inputLeft, &output, &room) == static_cast<std::size_t>(-1);
        const int reason = errno;
        text.append(buffer.data(), buffer.size() - room);
        if (stopped && reason != E2BIG) {
            text += replacement;
            ++input;
            --inputLeft;
        }
    }
    return text;
}

} // namespace quilvane
