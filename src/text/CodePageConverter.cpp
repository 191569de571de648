// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/CodePageConverter.h"

#include "text/charset.h"
#include "text/utf8.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <map>
#include <type_traits>
#include <utility>

#include <iconv.h>

namespace quilvane {

namespace {

struct Row {
    int codePage;
    const char* name; // the system's name of the converter
};

/// Sorted by code page.
constexpr Row rows[] = { { 437, "CP437" }, { 850, "CP850" }, { 852, "CP852" }, { 855, "CP855" },
    { 866, "CP866" }, { 874, "CP874" }, { 932, "CP932" }, { 936, "CP936" }, { 949, "CP949" },
    { 950, "CP950" }, { 951, "BIG5-HKSCS" }, { codePages::utf16LittleEndian, "UTF-16LE" },
    { codePages::utf16BigEndian, "UTF-16BE" }, { 1250, "CP1250" }, { 1251, "CP1251" },
    { codePages::westernEurope, "CP1252" }, { 1253, "CP1253" }, { 1254, "CP1254" }, { 1255, "CP1255" },
    { 1256, "CP1256" }, { 1257, "CP1257" }, { 1258, "CP1258" }, { 1361, "CP1361" },
    { codePages::macintosh, "MACINTOSH" }, { 10007, "MAC-CYRILLIC" }, { 20866, "KOI8-R" },
    { 21866, "KOI8-U" }, { 28592, "ISO-8859-2" }, { 28593, "ISO-8859-3" }, { 28594, "ISO-8859-4" },
    { 28595, "ISO-8859-5" }, { 28596, "ISO-8859-6" }, { 28597, "ISO-8859-7" }, { 28598, "ISO-8859-8" },
    { 28600, "ISO-8859-10" }, { 28603, "ISO-8859-13" }, { 28604, "ISO-8859-14" }, { 28605, "ISO-8859-15" },
    { 28606, "ISO-8859-16" }, { 50220, "ISO-2022-JP" }, { 51932, "EUC-JP" }, { 54936, "GB18030" },
    { codePages::utf8, "UTF-8" } };

constexpr bool isLower(const Row& left, const Row& right)
{
    return left.codePage < right.codePage;
}
static_assert(std::is_sorted(std::begin(rows), std::end(rows), isLower));

const Row& rowOf(int wanted)
{
    const auto* found = std::lower_bound(std::begin(rows), std::end(rows), Row{ wanted, nullptr }, isLower);
    return found != std::end(rows) && found->codePage == wanted ? *found : rowOf(codePages::westernEurope);
}

static_assert(std::is_same_v<iconv_t, void*>);

} // namespace

CodePageConverter& CodePageConverter::of(int codePage)
{
    thread_local std::map<int, CodePageConverter> converters;
    const Row& row = rowOf(codePage);
    return converters.try_emplace(row.codePage, row.name).first->second;
}

void CodePageConverter::openAll()
{
    for (const Row& row : rows)
        of(row.codePage);
}

CodePageConverter::CodePageConverter(const char* name)
    : m_native(iconv_open("UTF-8", name))
{
    for (std::size_t i = 0; i < m_upper.size(); ++i) {
        const char byte = static_cast<char>(m_upper.size() + i);
        m_upper[i] = character({ &byte, 1 });
    }
    const auto isIncomplete = [](char32_t code) { return code == incomplete; };
    const auto isCharacter = [](char32_t code) { return code != replacementCharacter; };
    if (!m_holdsBack && std::none_of(m_upper.begin(), m_upper.end(), isIncomplete)
        && std::any_of(m_upper.begin(), m_upper.end(), isCharacter))
        close();
}

CodePageConverter::~CodePageConverter()
{
    close();
}

void CodePageConverter::close()
{
    if (m_native)
        iconv_close(std::exchange(m_native, nullptr));
}

char32_t CodePageConverter::character(std::string_view bytes)
{
    iconv(m_native, nullptr, nullptr, nullptr, nullptr); // resets the state that earlier bytes have left
    std::array<char, 16> text{}; // a letter and its accent may come apart
    char* input = const_cast<char*>(bytes.data()); // iconv does not write there
    std::size_t inputLeft = bytes.size();
    char* output = text.data();
    std::size_t room = text.size();
    if (iconv(m_native, &input, &inputLeft, &output, &room) == std::size_t(-1))
        return errno == EINVAL ? incomplete : replacementCharacter;
    // Some sets hold a letter back until they know whether an accent follows.
    m_holdsBack = m_holdsBack || room == text.size();
    iconv(m_native, nullptr, nullptr, &output, &room);
    return room == text.size() ? replacementCharacter
                               : firstCharacter({ text.data(), text.size() - room }).code;
}

std::string CodePageConverter::toUtf8(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    if (!m_native) {
        for (const char c : bytes) {
            const auto byte = static_cast<unsigned char>(c);
            appendUtf8(text, byte < m_upper.size() ? byte : m_upper[byte - m_upper.size()]);
        }
        return text;
    }
    iconv(m_native, nullptr, nullptr, nullptr, nullptr);
    char* input = const_cast<char*>(bytes.data()); // iconv does not write there
    std::size_t inputLeft = bytes.size();
    std::array<char, 16384> buffer;
    while (inputLeft > 0) {
        char* output = buffer.data();
        std::size_t room = buffer.size();
        const bool stopped = iconv(m_native, &input, &inputLeft, &output, &room) == std::size_t(-1);
        const int reason = errno;
        text.append(buffer.data(), buffer.size() - room);
        if (stopped && reason != E2BIG) {
            appendUtf8(text, replacementCharacter);
            ++input;
            --inputLeft;
        }
    }
    char* output = buffer.data();
    std::size_t room = buffer.size();
    iconv(m_native, nullptr, nullptr, &output, &room); // writes what it has held back
    return text.append(buffer.data(), buffer.size() - room);
}

} // namespace quilvane
