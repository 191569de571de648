// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/reader/messages.h"

#include <utility>

namespace quilvane {

namespace {

class Writer {
public:
    void add(std::uint8_t number) { m_bytes += static_cast<char>(number); }

    /// Least significant byte first.
    void add(std::uint32_t number) { addBytes(number, 4); }
    void add(std::uint64_t number) { addBytes(number, 8); }

    void add(std::string_view text)
    {
        add(static_cast<std::uint32_t>(text.size()));
        m_bytes += text;
    }

    std::string take() { return std::move(m_bytes); }

private:
    void addBytes(std::uint64_t number, unsigned count)
    {
        for (unsigned i = 0; i < count; ++i)
            m_bytes += static_cast<char>(number >> (8 * i) & 0xFFu);
    }

    std::string m_bytes;
};

/// The first byte of a frame of a PDF document.
enum PdfFrame : std::uint8_t { readablePage, unreadablePage, endOfPages };

constexpr std::size_t longestBuildId = 128;
constexpr std::size_t longestSentence = 512;

/// Reads what a Writer wrote. Once something was missing or too large, all that follows is empty, and ended()
/// is false.
class Reader {
public:
    explicit Reader(std::string_view bytes)
        : m_rest(bytes)
    {
    }

    /// One of 0 to `largest`.
    std::uint8_t byte(std::uint8_t largest) { return static_cast<std::uint8_t>(upTo(largest, number(1))); }
    std::uint32_t word(std::uint32_t largest = UINT32_MAX)
    {
        return static_cast<std::uint32_t>(upTo(largest, number(4)));
    }
    std::uint64_t longWord() { return number(8); }
    std::string text(std::size_t longest)
    {
        return std::string(take(word(static_cast<std::uint32_t>(longest))));
    }
    /// All that is left.
    std::string rest() { return std::string(take(m_rest.size())); }

    /// Whether all was right so far and nothing is left.
    bool ended() const { return !m_failed && m_rest.empty(); }

private:
    std::uint64_t number(std::size_t bytes)
    {
        std::uint64_t result = 0;
        unsigned shift = 0;
        for (const char byte : take(bytes)) {
            result |= static_cast<std::uint64_t>(static_cast<unsigned char>(byte)) << shift;
            shift += 8;
        }
        return result;
    }

    std::uint64_t upTo(std::uint64_t largest, std::uint64_t number)
    {
        m_failed = m_failed || number > largest;
        return m_failed ? 0 : number;
    }

    std::string_view take(std::size_t count)
    {
        m_failed = m_failed || count > m_rest.size();
        if (m_failed)
            return {};
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return taken;
    }

    std::string_view m_rest;
    bool m_failed = false;
};

/// The message, if the reader has taken all of its bytes.
template <typename Message>
std::optional<Message> whole(const Reader& reader, Message& message)
{
    return reader.ended() ? std::optional(std::move(message)) : std::nullopt;
}

} // namespace

std::string encode(const ReaderGreeting& greeting)
{
    Writer writer;
    writer.add(std::string_view(greeting.buildId));
    writer.add(std::string_view(greeting.missing));
    return writer.take();
}

std::optional<ReaderGreeting> decodeGreeting(std::string_view bytes)
{
    Reader reader(bytes);
    ReaderGreeting greeting;
    greeting.buildId = reader.text(longestBuildId);
    greeting.missing = reader.text(longestSentence);
    return whole(reader, greeting);
}

std::string encode(const ReaderOrder& order)
{
    Writer writer;
    writer.add(static_cast<std::uint8_t>(order.action));
    writer.add(order.document);
    writer.add(static_cast<std::uint8_t>(order.kind));
    writer.add(order.memory);
    writer.add(order.documentSeconds);
    writer.add(order.stepMilliseconds);
    writer.add(order.offset);
    writer.add(order.length);
    return writer.take();
}

std::optional<ReaderOrder> decodeOrder(std::string_view bytes)
{
    using Action = ReaderOrder::Action;
    Reader reader(bytes);
    ReaderOrder order;
    order.action = Action(reader.byte(static_cast<std::uint8_t>(Action::EndAndTell)));
    order.document = reader.word();
    order.kind = DocumentKind(reader.byte(static_cast<std::uint8_t>(DocumentKind::Word)));
    order.memory = reader.longWord();
    order.documentSeconds = reader.word();
    order.stepMilliseconds = reader.word();
    order.offset = reader.longWord();
    order.length = reader.longWord();
    return whole(reader, order);
}

std::string encode(const ReaderAnswer& answer)
{
    Writer writer;
    writer.add(answer.document);
    writer.add(answer.value);
    return writer.take();
}

std::optional<ReaderAnswer> decodeAnswer(std::string_view bytes)
{
    Reader reader(bytes);
    ReaderAnswer answer;
    answer.document = reader.word();
    answer.value = reader.word();
    return whole(reader, answer);
}

std::string encode(const PdfOpening& opening)
{
    Writer writer;
    writer.add(static_cast<std::uint8_t>(opening.outcome));
    writer.add(opening.pageCount);
    writer.add(std::string_view(opening.reason));
    return writer.take();
}

std::optional<PdfOpening> decodeOpening(std::string_view bytes)
{
    using Outcome = PdfOpening::Outcome;
    Reader reader(bytes);
    PdfOpening opening;
    opening.outcome = Outcome(reader.byte(static_cast<std::uint8_t>(Outcome::Locked)));
    opening.pageCount = reader.word(mostPdfPages);
    opening.reason = reader.text(longestPdfMessage);
    return whole(reader, opening);
}

std::string encode(const PdfPage& page)
{
    return static_cast<char>(page.isReadable ? readablePage : unreadablePage) + page.text;
}

std::optional<PdfPage> decodePage(std::string_view bytes)
{
    Reader reader(bytes);
    PdfPage page;
    page.isReadable = reader.byte(unreadablePage) == readablePage;
    page.text = reader.rest();
    if (!page.isReadable && page.text.size() > longestPdfMessage)
        return std::nullopt;
    return whole(reader, page);
}

std::string encode(const PdfEnd& end)
{
    Writer writer;
    writer.add(static_cast<std::uint8_t>(endOfPages));
    writer.add(static_cast<std::uint8_t>(end.warnings.size()));
    for (const std::string& warning : end.warnings)
        writer.add(std::string_view(warning));
    return writer.take();
}

std::optional<PdfEnd> decodeEnd(std::string_view bytes)
{
    Reader reader(bytes);
    PdfEnd end;
    const bool isEnd = reader.byte(endOfPages) == endOfPages;
    end.warnings.resize(reader.byte(mostPdfMessages));
    for (std::string& warning : end.warnings)
        warning = reader.text(longestPdfMessage);
    return isEnd ? whole(reader, end) : std::nullopt;
}

} // namespace quilvane
