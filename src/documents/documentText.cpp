// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/documentText.h"

#include "documents/html/htmlText.h"
#include "documents/word/binaryWord.h"
#include "documents/word/openXml.h"
#include "documents/word/rtf.h"
#include "documents/word/textRuns.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace quilvane {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view zipMark = "PK\3\4"sv;
constexpr std::string_view compoundMark = "\xD0\xCF\x11\xE0"sv;

/// The first characters in lower case, without blanks, byte order mark and the zero bytes of UTF-16.
std::string beginning(std::string_view bytes)
{
    constexpr std::size_t farEnough = 4096;
    constexpr std::string_view passedOver = "\0\t\n\r \xEF\xBB\xBF\xFE\xFF"sv;
    std::string result;
    for (const char c : bytes.substr(0, farEnough)) {
        if (passedOver.find(c) == std::string_view::npos)
            result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

bool looksLikeHtml(std::string_view begin)
{
    constexpr std::array marks{ "<html"sv, "<!doctypehtml"sv, "<head>"sv, "<body"sv };
    return std::any_of(marks.begin(), marks.end(),
        [begin](std::string_view mark) { return begin.find(mark) != std::string_view::npos; });
}

/// As a compound file keeps a stream's name in its directory: UTF-16, little-endian.
std::string directoryName(std::string_view name)
{
    std::string result;
    for (const char c : name) {
        result += c;
        result += '\0';
    }
    return result;
}

/// Whether a compound file that can't be read was a Word document, and one that is not encrypted. The begin
/// of its main stream tells ([MS-DOC], section 2.5.1, and the same in earlier versions), or that stream's
/// name.
bool wasPlainWord(std::string_view bytes)
{
    if (bytes.find(directoryName("EncryptedPackage")) != std::string_view::npos)
        return false;
    constexpr std::size_t sectorSize = 512;
    constexpr std::size_t flagsAt = 11;
    constexpr char isEncrypted = 1;
    for (std::size_t at = sectorSize; at + flagsAt < bytes.size(); at += sectorSize) {
        const std::string_view mark = bytes.substr(at, 2);
        if (mark == "\xEC\xA5" || mark == "\xDC\xA5")
            return !(bytes[at + flagsAt] & isEncrypted);
    }
    return bytes.find(directoryName("WordDocument")) != std::string_view::npos;
}

std::optional<std::string> compoundText(std::string_view bytes)
{
    if (std::optional<std::string> text = textOfBinaryWord(bytes))
        return text;
    std::string left = wasPlainWord(bytes) ? textRuns(bytes) : std::string();
    return left.empty() ? std::nullopt : std::optional(std::move(left));
}

std::optional<std::string> markupText(std::string_view bytes, ReadingBudget& budget)
{
    const std::string begin = beginning(bytes);
    if (!begin.starts_with('<'))
        return std::nullopt;
    std::optional<std::string> text = textOfFlatXml(bytes, budget);
    if (!text && looksLikeHtml(begin))
        text = htmlBodyText(bytes, MailtoLinks::Append);
    return text;
}

std::optional<std::string> textOfAnyKind(std::string_view bytes, ReadingBudget& budget)
{
    if (bytes.starts_with(zipMark))
        return textOfOpenXml(bytes, budget);
    if (bytes.starts_with(compoundMark))
        return compoundText(bytes);
    if (std::optional<std::string> text = textOfRtf(bytes))
        return text;
    return markupText(bytes, budget);
}

} // namespace

std::optional<std::string> documentText(std::string_view bytes)
{
    ReadingBudget budget;
    return documentText(bytes, budget);
}

std::optional<std::string> documentText(std::string_view bytes, ReadingBudget& budget)
{
    if (budget.depth == 0)
        return std::nullopt;
    --budget.depth;
    std::optional<std::string> text = textOfAnyKind(bytes, budget);
    ++budget.depth;
    return text;
}

} // namespace quilvane
