// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/rtf.h"

#include "documents/word/TextCollector.h"
#include "documents/word/rtfKeywords.h"
#include "text/TextDecoder.h"
#include "text/ascii.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

/// The settings of a group, which the groups inside it inherit.
struct State {
    bool isSkipped = false;
    bool isDeleted = false;
    bool isInFontTable = false;
    std::optional<int> font; // else the default one
    /// How many characters after a \u replace it for readers that do not know it.
    int fallbackLength = 1;
};

struct Group {
    State outer;
    /// What closes with the group: nothing, RtfAction::Aside or RtfAction::FieldCode.
    std::optional<RtfAction> closes;
};

/// Walks an RTF document once. Construct it on the document, call read() once.
class RtfReader {
public:
    explicit RtfReader(std::string_view document)
        : m_rest(document)
    {
    }

    std::string read()
    {
        do {
            readToken();
        } while (!m_rest.empty() && !m_text.isFull() && m_depth > 0);
        return m_text.take();
    }

private:
    /// A group beyond that depth is read as if its braces were not there.
    static constexpr std::size_t deepest = 10'000;

    void readToken()
    {
        if (m_fallbackLeft == 0 && !m_decoder.isPending())
            readPlain();
        if (m_rest.empty())
            return;
        const char c = m_rest.front();
        m_rest.remove_prefix(1);
        switch (c) {
        case '{':
            openGroup();
            break;
        case '}':
            closeGroup();
            break;
        case '\\':
            readControl();
            break;
        case '\0': // filler in damaged files
            m_rest.remove_prefix(std::min(m_rest.find_first_not_of('\0'), m_rest.size()));
            break;
        case '\r':
        case '\n':
            break;
        default:
            putByte(c);
        }
    }

    /// Text up to the next byte with a special meaning.
    void readPlain()
    {
        const auto isText = [](char c) {
            return TextCollector::isPlain(static_cast<unsigned char>(c)) && c != '\\' && c != '{' && c != '}';
        };
        const auto* const end = std::find_if_not(m_rest.begin(), m_rest.end(), isText);
        const auto count = static_cast<std::size_t>(end - m_rest.begin());
        if (countsAsText())
            m_text.putPlain(m_rest.substr(0, count));
        m_rest.remove_prefix(count);
    }

    void openGroup()
    {
        m_fallbackLeft = 0;
        m_isOptional = false;
        if (m_depth++ < deepest)
            m_groups.push_back({ m_state, {} });
    }

    void closeGroup()
    {
        m_fallbackLeft = 0;
        m_isOptional = false;
        if (m_depth-- > deepest)
            return;
        const Group& group = m_groups.back();
        if (group.closes == RtfAction::Aside)
            m_text.closeAside();
        else if (group.closes == RtfAction::FieldCode)
            m_text.closeFieldCode();
        m_state = group.outer;
        m_groups.pop_back();
    }

    void readControl()
    {
        if (m_rest.empty())
            return;
        const char c = m_rest.front();
        if (isLetter(c)) {
            readWord();
            return;
        }
        m_rest.remove_prefix(1);
        switch (c) {
        case '*':
            m_isOptional = true;
            break;
        case '\'':
            readHexByte();
            break;
        case '~':
            putCharacter(' ');
            break;
        case '_':
            putCharacter('-');
            break;
        case '{':
        case '}':
        case '\\':
            putByte(c);
            break;
        case '\r':
        case '\n':
            perform({ {}, RtfAction::ParagraphEnd }, {});
            break;
        default: // the optional hyphen, and marks of the index
            break;
        }
    }

    void readHexByte()
    {
        std::uint8_t byte = 0;
        const std::string_view digits = m_rest.substr(0, 2);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        m_rest.remove_prefix(static_cast<std::size_t>(end - digits.data()));
        if (error == std::errc())
            putByte(static_cast<char>(byte));
    }

    /// A word of letters, its number if there is one, and the blank that ends it.
    void readWord()
    {
        const auto* const nameEnd = std::find_if_not(m_rest.begin(), m_rest.end(), isLetter);
        const std::string_view name(m_rest.begin(), nameEnd);
        m_rest.remove_prefix(name.size());
        const std::optional<int> number = readNumber();
        if (m_rest.starts_with(' '))
            m_rest.remove_prefix(1);

        const RtfKeyword* keyword = findRtfKeyword(name);
        const bool wasOptional = std::exchange(m_isOptional, false);
        if (keyword)
            perform(*keyword, number);
        else if (wasOptional)
            m_state.isSkipped = true;
    }

    /// Nothing for a number that is too large.
    std::optional<int> readNumber()
    {
        int number = 0;
        const char* begin = m_rest.data();
        const auto [end, error] = std::from_chars(begin, begin + m_rest.size(), number);
        m_rest.remove_prefix(static_cast<std::size_t>(end - begin));
        return error == std::errc() ? std::optional(number) : std::nullopt;
    }

    void perform(const RtfKeyword& keyword, std::optional<int> number)
    {
        if (keyword.action == RtfAction::Binary)
            m_rest.remove_prefix(
                std::min(m_rest.size(), static_cast<std::size_t>(std::max(number.value_or(0), 0))));
        else if (m_state.isInFontTable)
            performInFontTable(keyword.action, number.value_or(0));
        else if (!m_state.isSkipped)
            performInText(keyword, number);
    }

    void performInFontTable(RtfAction action, int number)
    {
        constexpr int lastFont = 0x7FFF;
        if (action == RtfAction::Font)
            m_tableFont = std::clamp(number, 0, lastFont);
        else if (action == RtfAction::FontCharset)
            if (const std::optional<int> codePage = codePageOfCharset(number))
                m_fontCodePages[m_tableFont] = *codePage;
    }

    void performInText(const RtfKeyword& keyword, std::optional<int> number)
    {
        switch (keyword.action) {
        case RtfAction::Character:
            putCharacter(static_cast<char32_t>(keyword.value));
            break;
        case RtfAction::LineEnd:
            m_text.endLine();
            break;
        case RtfAction::ParagraphEnd:
            m_text.endParagraph();
            break;
        case RtfAction::FontTable:
            m_state.isInFontTable = true;
            [[fallthrough]];
        case RtfAction::Skip:
            m_state.isSkipped = true;
            break;
        case RtfAction::Aside:
        case RtfAction::FieldCode:
            beginAside(keyword.action);
            break;
        case RtfAction::DocumentCodePage:
            m_codePage = number.value_or(m_codePage);
            break;
        case RtfAction::CodePage:
            m_codePage = keyword.value;
            break;
        case RtfAction::DefaultFont:
            m_defaultFont = number.value_or(0);
            break;
        case RtfAction::Font:
            m_state.font = number.value_or(0);
            break;
        case RtfAction::FallbackLength:
            m_state.fallbackLength = number.value_or(1);
            break;
        case RtfAction::Unicode:
            putUnit(static_cast<char16_t>(number.value_or(0))); // negative above 0x7FFF
            break;
        case RtfAction::Deleted:
            m_state.isDeleted = number != 0;
            break;
        case RtfAction::ResetCharacters:
            m_state.isDeleted = false;
            m_state.font.reset();
            break;
        case RtfAction::Transparent:
        case RtfAction::FontCharset:
        case RtfAction::Binary:
            break;
        }
    }

    void beginAside(RtfAction action)
    {
        Group& group = m_groups.back();
        if (m_depth > deepest || group.closes)
            return;
        group.closes = action;
        m_text.openAside();
    }

    /// A byte of text, in the current font's code page.
    void putByte(char c)
    {
        constexpr std::uint8_t firstBeyondAscii = 0x80;
        if (!countsAsText())
            return;
        const auto byte = static_cast<std::uint8_t>(c);
        if (byte < firstBeyondAscii && !m_decoder.isPending()) {
            m_text.put(byte);
            return;
        }
        const int codePage = currentCodePage();
        if (codePage != m_decoderCodePage) {
            m_decoder = TextDecoder(codePage);
            m_decoderCodePage = codePage;
        }
        if (const std::optional<char32_t> character = m_decoder.next(byte))
            m_text.put(*character);
    }

    void putCharacter(char32_t character)
    {
        if (countsAsText())
            m_text.put(character);
    }

    void putUnit(char16_t unit)
    {
        if (!m_state.isDeleted)
            m_text.putUnit(unit);
        m_fallbackLeft = m_state.fallbackLength;
    }

    /// False for invisible text, and for the characters that replace a \u, which it counts down.
    bool countsAsText()
    {
        if (m_fallbackLeft > 0) {
            --m_fallbackLeft;
            return false;
        }
        return !m_state.isSkipped && !m_state.isDeleted;
    }

    int currentCodePage() const
    {
        const auto found = m_fontCodePages.find(m_state.font.value_or(m_defaultFont));
        return found == m_fontCodePages.end() ? m_codePage : found->second;
    }

    std::string_view m_rest;
    TextCollector m_text;
    State m_state;
    std::vector<Group> m_groups;
    /// How many groups are open, those beyond `deepest` included.
    std::size_t m_depth = 0;
    /// After \*: a group whose first word is not known is skipped.
    bool m_isOptional = false;
    /// How many characters that replace a \u are still to come.
    int m_fallbackLeft = 0;

    int m_codePage = codePages::westernEurope;
    int m_defaultFont = 0;
    int m_tableFont = 0;
    std::map<int, int> m_fontCodePages;
    TextDecoder m_decoder;
    int m_decoderCodePage = codePages::westernEurope;
};

} // namespace

std::optional<std::string> textOfRtf(std::string_view bytes)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark))
        bytes.remove_prefix(byteOrderMark.size());
    bytes.remove_prefix(std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size()));
    if (!bytes.starts_with("{\\rtf"))
        return {};
    return RtfReader(bytes).read();
}

} // namespace quilvane
