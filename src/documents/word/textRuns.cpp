// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/textRuns.h"

#include "documents/word/TextCollector.h"
#include "text/littleEndian.h"

namespace quilvane {

namespace {

/// ASCII and the letters of European alphabets only: almost every pair of random bytes is some Unicode
/// character. Up to 255 the letters have the same codes in one byte and in two.
bool isPrintable(char16_t unit)
{
    constexpr char16_t lastCyrillic = 0x052F;
    return (unit >= ' ' && unit < 0x7F) || unit == '\t' || (unit >= 0xC0 && unit <= lastCyrillic);
}

/// `unitAt` gives the character at an offset; each is `width` bytes wide, and the first one is at `begin`.
template <typename UnitAt>
void collectRuns(
    TextCollector& text, std::string_view bytes, std::size_t begin, std::size_t width, UnitAt unitAt)
{
    constexpr std::size_t shortestRun = 4; // characters
    std::size_t runBegin = begin;
    for (std::size_t at = begin; !text.isFull(); at += width) {
        const bool isEnd = !holdsBytes(bytes, at, width);
        if (!isEnd && isPrintable(unitAt(at)))
            continue;
        if (at - runBegin >= shortestRun * width) {
            for (std::size_t in = runBegin; in < at; in += width)
                text.put(unitAt(in));
            text.endParagraph();
        }
        if (isEnd)
            return;
        runBegin = at + width;
    }
}

} // namespace

std::string textRuns(std::string_view bytes)
{
    TextCollector text;
    collectRuns(text, bytes, 0, 1, [bytes](std::size_t at) { return u8At(bytes, at); });
    for (const std::size_t parity : { std::size_t(0), std::size_t(1) })
        collectRuns(text, bytes, parity, 2, [bytes](std::size_t at) { return u16At(bytes, at); });
    return text.take();
}

} // namespace quilvane
