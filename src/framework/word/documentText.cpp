// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/word/documentText.h"

#include "framework/text/htmlText.h"
#include "framework/word/CompoundFile.h"
#include "framework/word/binaryWord.h"
#include "framework/word/openXml.h"
#include "framework/word/rtf.h"

#include <array>
#include <cstddef>

namespace quilvane {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view zipMark = "PK\3\4"sv;

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
    for (const std::string_view mark : marks) {
        if (begin.find(mark) != std::string_view::npos)
            return true;
    }
    return false;
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
    if (CompoundFile::isCompoundFile(bytes))
        return textOfBinaryWord(bytes);
    if (std::optional<std::string> text = textOfRtf(bytes))
        return text;
    return markupText(bytes, budget);
}

} // namespace

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
