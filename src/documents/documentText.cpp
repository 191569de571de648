// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/documentText.h"

#include "documents/html/htmlText.h"
#include "documents/html/mimeMessage.h"
#include "documents/word/binaryWord.h"
#include "documents/word/openXml.h"
#include "documents/word/rtf.h"
#include "documents/word/textRuns.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view zipMark = "PK\3\4"sv;
constexpr std::string_view compoundMark = "\xD0\xCF\x11\xE0"sv;
constexpr std::string_view word2Mark = "\xDB\xA5"sv;

/// The most bytes of a file that is read from its beginning to its end. Packed and compound files have no
/// such limit: their parts may be anywhere.
constexpr std::size_t mostReadInOrder = std::size_t(256) << 20;

/// Bytes of a web page, which is converted as a whole.
constexpr std::size_t longestPage = std::size_t(64) << 20;

/// A stream's name as the directory of a compound file holds it: UTF-16, little-endian.
std::string directoryName(std::string_view name)
{
    std::string result;
    for (const char c : name) {
        result += c;
        result += '\0';
    }
    return result;
}

/// Whether a binary file that can't be read was a Word document that is not encrypted. It is recognised by
/// the beginning of its main stream ([MS-DOC], section 2.5.1, and the same in earlier versions) or by that
/// stream's name.
bool wasPlainWord(std::string_view bytes)
{
    if (bytes.find(directoryName("EncryptedPackage")) != std::string_view::npos)
        return false;
    constexpr std::size_t sectorSize = 512;
    constexpr std::size_t flagsAt = 11;
    constexpr char isEncrypted = 1;
    for (std::size_t at = 0; at + flagsAt < bytes.size(); at += sectorSize) {
        const std::string_view mark = bytes.substr(at, 2);
        if (mark == "\xEC\xA5" || mark == "\xDC\xA5" || (at == 0 && mark == word2Mark))
            return !(bytes[at + flagsAt] & isEncrypted);
    }
    return bytes.find(directoryName("WordDocument")) != std::string_view::npos;
}

std::optional<std::string> binaryText(std::string_view bytes)
{
    if (std::optional<std::string> text = textOfBinaryWord(bytes))
        return text;
    bytes = bytes.substr(0, mostReadInOrder);
    std::string left = wasPlainWord(bytes) ? textRuns(bytes) : std::string();
    return left.empty() ? std::nullopt : std::optional(std::move(left));
}

/// Whether the first character is a '<', after blanks, byte order mark and the zero byte of UTF-16.
bool beginsAsXml(std::string_view bytes)
{
    constexpr std::size_t farEnough = 4096;
    const std::string_view head = bytes.substr(0, farEnough);
    const std::size_t begin = head.find_first_not_of("\0\t\n\r \xEF\xBB\xBF\xFE\xFF"sv);
    return begin != std::string_view::npos && head[begin] == '<';
}

std::optional<std::string> markupText(std::string_view bytes, ReadingBudget& budget)
{
    if (beginsAsXml(bytes))
        if (std::optional<std::string> text = textOfFlatXml(bytes, budget))
            return text;
    bytes = bytes.substr(0, longestPage);
    if (looksLikeHtml(bytes))
        return htmlBodyText(bytes);
    const std::vector<HtmlPart> parts = htmlPartsOf(bytes);
    std::string text;
    for (const HtmlPart& part : parts)
        text += htmlBodyText(part.html, part.charset) + '\n';
    return parts.empty() ? std::nullopt : std::optional(std::move(text));
}

std::optional<std::string> textOfAnyKind(std::string_view bytes, ReadingBudget& budget)
{
    if (bytes.starts_with(zipMark))
        return textOfOpenXml(bytes, budget);
    if (bytes.starts_with(compoundMark) || bytes.starts_with(word2Mark))
        return binaryText(bytes);
    if (std::optional<std::string> text = textOfRtf(bytes.substr(0, mostReadInOrder)))
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
