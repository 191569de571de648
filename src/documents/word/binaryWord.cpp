// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/binaryWord.h"

#include "documents/word/CompoundFile.h"
#include "documents/word/TextCollector.h"
#include "documents/word/WordHeader.h"
#include "documents/word/characterProperties.h"
#include "documents/word/pieceTable.h"
#include "text/TextDecoder.h"
#include "text/littleEndian.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

/// Takes the characters of a document in order, and turns those with a special meaning in Word ([MS-DOC]
/// 2.4.1, 2.8.25) into plain text.
class CharacterSink {
public:
    bool isFull() const { return m_text.isFull(); }
    std::string take() { return m_text.take(); }
    void putPlain(std::string_view characters) { m_text.putPlain(characters); }

    void put(char16_t character)
    {
        constexpr char16_t firstPlain = 0x20;
        if (character >= firstPlain)
            m_text.putUnit(character);
        else
            putSpecial(character);
    }

private:
    void putSpecial(char16_t character)
    {
        switch (character) {
        case 0x01: // a picture
        case 0x02: // the number of a note
            m_text.put(' ');
            break;
        case 0x07: // the end of a cell or a row
        case 0x09:
            m_text.put('\t');
            break;
        case 0x0A:
        case 0x0B: // a line's end
            m_text.endLine();
            break;
        case 0x03: // the lines above notes
        case 0x04:
        case 0x0C: // the end of a page, a paragraph, a column
        case 0x0D:
        case 0x0E:
            m_text.endParagraph();
            break;
        case 0x13:
            beginField();
            break;
        case 0x14:
            endFieldCode();
            break;
        case 0x15:
            endField();
            break;
        case 0x1E: // a hyphen that does not break the line
            m_text.put('-');
            break;
        default: // anchors, and the hyphen that shows at a line's end only
            break;
        }
    }

    void beginField()
    {
        constexpr std::size_t deepest = 1000;
        if (m_isInCode.size() == deepest) {
            ++m_tooDeep;
            return;
        }
        m_isInCode.push_back(true);
        m_text.openAside();
    }

    void endFieldCode()
    {
        if (m_tooDeep > 0 || m_isInCode.empty() || !m_isInCode.back())
            return;
        m_text.closeFieldCode();
        m_isInCode.back() = false;
    }

    void endField()
    {
        if (m_tooDeep > 0) {
            --m_tooDeep;
            return;
        }
        endFieldCode();
        if (!m_isInCode.empty())
            m_isInCode.pop_back();
    }

    TextCollector m_text;
    /// For each open field: true in its code, false in its result.
    std::vector<bool> m_isInCode;
    /// How many more fields are open inside those; their marks are skipped.
    std::size_t m_tooDeep = 0;
};

/// Reads the pieces of a document's main stream. Call put() for each, then take the text.
class PieceReader {
public:
    PieceReader(std::string_view mainStream, std::vector<ByteRange> deleted, int codePage)
        : m_mainStream(mainStream)
        , m_deleted(std::move(deleted))
        , m_decoder(codePage)
    {
    }

    void put(const Piece& piece)
    {
        const std::size_t width = piece.isWide ? 2 : 1;
        const std::size_t end = std::min(piece.begin + piece.characters * width, m_mainStream.size());
        std::size_t at = piece.begin;
        auto gap = std::upper_bound(m_deleted.begin(), m_deleted.end(), at,
            [](std::size_t position, const ByteRange& range) { return position < range.end; });
        while (at < end) {
            const std::size_t stop = gap == m_deleted.end() ? end : std::min(end, gap->begin);
            if (at < stop)
                putStretch(at, stop, piece.isWide);
            if (gap == m_deleted.end())
                return;
            at = std::max(at, gap->end);
            ++gap;
        }
    }

    bool isDone() const { return m_sink.isFull() || m_read >= TextCollector::mostText; }
    std::string take() { return m_sink.take(); }

private:
    void putStretch(std::size_t begin, std::size_t end, bool isWide)
    {
        m_read += end - begin;
        const std::string_view stretch = m_mainStream.substr(begin, end - begin);
        if (isWide)
            putWide(stretch);
        else
            putNarrow(stretch);
    }

    void putWide(std::string_view stretch)
    {
        std::array<char, 256> plain; // most text is ASCII, which is faster in runs
        std::size_t count = 0;
        for (; stretch.size() >= 2; stretch.remove_prefix(2)) {
            const char16_t unit = u16At(stretch, 0);
            if (TextCollector::isPlain(unit) && count < plain.size()) {
                plain[count++] = static_cast<char>(unit);
                continue;
            }
            m_sink.putPlain({ plain.data(), std::exchange(count, 0) });
            m_sink.put(unit);
        }
        m_sink.putPlain({ plain.data(), count });
    }

    void putNarrow(std::string_view stretch)
    {
        while (!stretch.empty()) {
            if (!m_decoder.isPending()) {
                const auto* const plainEnd = std::find_if_not(stretch.begin(), stretch.end(),
                    [](char c) { return TextCollector::isPlain(static_cast<unsigned char>(c)); });
                const auto count = static_cast<std::size_t>(plainEnd - stretch.begin());
                m_sink.putPlain(stretch.substr(0, count));
                stretch.remove_prefix(count);
                if (stretch.empty())
                    return;
            }
            if (const std::optional<char32_t> character = m_decoder.next(u8At(stretch, 0)))
                m_sink.put(static_cast<char16_t>(*character)); // no code page of Word has others
            stretch.remove_prefix(1);
        }
    }

    std::string_view m_mainStream;
    std::vector<ByteRange> m_deleted;
    TextDecoder m_decoder;
    CharacterSink m_sink;
    /// Bytes read so far. Limited on its own, since pieces may overlap and may hold no text.
    std::size_t m_read = 0;
};

/// Nothing if it is damaged.
std::optional<std::string> textOf(
    const WordHeader& header, std::string_view mainStream, std::string_view tableStream)
{
    const std::optional<std::vector<Piece>> pieces = readPieceTable(header, tableStream);
    if (!pieces)
        return {};
    PieceReader reader(mainStream, deletedRanges(header, mainStream, tableStream), header.codePage);
    for (const Piece& piece : *pieces) {
        if (reader.isDone())
            break;
        if (!piece.isDeleted)
            reader.put(piece);
    }
    return reader.take();
}

} // namespace

std::optional<std::string> textOfBinaryWord(std::string_view bytes)
{
    std::optional<WordHeader> header = readWordHeader(bytes);
    if (header && header->isOldest) {
        bytes = bytes.substr(0, TextCollector::mostText); // so that no piece is longer
        return header->isEncrypted ? std::nullopt : textOf(*header, bytes, bytes);
    }

    const std::optional<CompoundFile> file = CompoundFile::open(bytes);
    if (!file || file->has("EncryptedPackage"))
        return {};
    const std::optional<std::string> mainStream = file->stream("WordDocument");
    if (!mainStream)
        return {};
    header = readWordHeader(*mainStream);
    if (!header || header->isEncrypted)
        return {};
    if (header->isOld)
        return textOf(*header, *mainStream, *mainStream);
    const std::optional<std::string> tableStream = file->stream(header->hasTable1 ? "1Table" : "0Table");
    return tableStream ? textOf(*header, *mainStream, *tableStream) : std::nullopt;
}

} // namespace quilvane
