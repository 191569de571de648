// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/WideTextDecoder.h"

#include "text/utf8.h"

#include <utility>

namespace quilvane {

namespace {

constexpr char32_t byteOrderMark = 0xFEFF;

} // namespace

std::optional<WideTextDecoder> WideTextDecoder::forBeginOf(std::string_view text)
{
    using namespace std::string_view_literals;
    // The longer mark first: it begins with the shorter one.
    if (text.starts_with("\xFF\xFE\0\0"sv))
        return WideTextDecoder(4, false);
    if (text.starts_with("\0\0\xFE\xFF"sv))
        return WideTextDecoder(4, true);
    if (text.starts_with("\xFF\xFE"sv))
        return WideTextDecoder(2, false);
    if (text.starts_with("\xFE\xFF"sv))
        return WideTextDecoder(2, true);
    return std::nullopt;
}

void WideTextDecoder::decode(std::string_view bytes, std::string& utf8)
{
    while (!m_cutUnit.empty() && !bytes.empty()) {
        m_cutUnit += bytes.front();
        bytes.remove_prefix(1);
        if (m_cutUnit.size() == m_unitSize)
            take(unitAt(std::exchange(m_cutUnit, {}), 0), utf8);
    }
    std::size_t begin = 0;
    for (; begin + m_unitSize <= bytes.size(); begin += m_unitSize)
        take(unitAt(bytes, begin), utf8);
    m_cutUnit += bytes.substr(begin);
}

void WideTextDecoder::finish(std::string& utf8)
{
    if (!m_cutUnit.empty() || m_highSurrogate != 0)
        appendUtf8(utf8, replacementCharacter);
    m_cutUnit.clear();
    m_highSurrogate = 0;
}

char32_t WideTextDecoder::unitAt(std::string_view bytes, std::size_t begin) const
{
    char32_t unit = 0;
    for (std::size_t i = 0; i < m_unitSize; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[begin + i]);
        const std::size_t place = m_bigEndian ? m_unitSize - 1 - i : i;
        unit |= char32_t{ byte } << (8 * place);
    }
    return unit;
}

void WideTextDecoder::take(char32_t unit, std::string& utf8)
{
    if (std::exchange(m_atBegin, false) && unit == byteOrderMark)
        return;
    const char32_t high = std::exchange(m_highSurrogate, 0);
    if (high != 0 && isLowSurrogate(unit)) {
        appendUtf8(utf8, characterOfPair(high, unit));
        return;
    }
    if (high != 0)
        appendUtf8(utf8, replacementCharacter);
    if (m_unitSize == 2 && isHighSurrogate(unit))
        m_highSurrogate = unit;
    else
        appendUtf8(utf8, unit); // U+FFFD for half a pair
}

} // namespace quilvane
