// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/reader/pdfMessages.h"

namespace quilvane {

namespace {

class Writer {
public:
    void add(std::uint8_t number) { m_bytes += static_cast<char>(number); }

    /// Least significant byte first.
    void add(std::uint32_t number)
    {
        for (int shift = 0; shift < 32; shift += 8)
            m_bytes += static_cast<char>(number >> shift & 0xFFu);
    }

    void add(std::string_view text)
    {
        add(static_cast<std::uint32_t>(text.size()));
        m_bytes += text;
    }

    std::string take() { return std::move(m_bytes); }

private:
    std::string m_bytes;
};

/// Reads what a Writer wrote. Once something was missing or too large, all that follows is empty, and ended()
/// is false.
class Reader {
public:
    explicit Reader(std::string_view bytes)
        : m_rest(bytes)
    {
    }

    /// One of 0 to `largest`.
    std::uint32_t byte(std::uint32_t largest) { return upTo(largest, number(1)); }
    std::uint32_t word(std::uint32_t largest) { return upTo(largest, number(4)); }
    std::string text(std::size_t longest)
    {
        return std::string(take(word(static_cast<std::uint32_t>(longest))));
    }

    /// Whether all was right so far and nothing is left.
    bool ended() const { return !m_failed && m_rest.empty(); }

private:
    std::uint32_t number(std::size_t bytes)
    {
        std::uint32_t result = 0;
        unsigned shift = 0;
        for (const char byte : take(bytes)) {
            result |= static_cast<std::uint32_t>(static_cast<unsigned char>(byte)) << shift;
            shift += 8;
        }
        return result;
    }

    std::uint32_t upTo(std::uint32_t largest, std::uint32_t number)
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

} // namespace

std::string encode(const PdfRequest& request)
{
    Writer writer;
    writer.add(static_cast<std::uint8_t>(request.operation));
    writer.add(static_cast<std::uint32_t>(request.page));
    writer.add(request.password);
    return writer.take();
}

std::optional<PdfRequest> decodeRequest(std::string_view bytes)
{
    using Operation = PdfRequest::Operation;
    Reader reader(bytes);
    PdfRequest request;
    request.operation = Operation(reader.byte(static_cast<std::uint32_t>(Operation::ExtractText)));
    request.page = static_cast<std::int32_t>(reader.word(UINT32_MAX));
    request.password = reader.text(longestPdfPassword);
    if (!reader.ended())
        return std::nullopt;
    return request;
}

std::string encode(const PdfReply& reply)
{
    Writer writer;
    writer.add(static_cast<std::uint8_t>(reply.outcome));
    writer.add(static_cast<std::uint32_t>(reply.pageCount));
    writer.add(reply.text);
    writer.add(static_cast<std::uint8_t>(reply.messages.size()));
    for (const std::string& message : reply.messages)
        writer.add(message);
    return writer.take();
}

std::optional<PdfReply> decodeReply(std::string_view bytes)
{
    using Outcome = PdfReply::Outcome;
    Reader reader(bytes);
    PdfReply reply;
    reply.outcome = Outcome(reader.byte(static_cast<std::uint32_t>(Outcome::NoSuchPage)));
    reply.pageCount = static_cast<std::int32_t>(reader.word(INT32_MAX));
    reply.text = reader.text(longestPdfText);
    reply.messages.resize(reader.byte(mostPdfMessages));
    for (std::string& message : reply.messages)
        message = reader.text(longestPdfMessage);
    if (!reader.ended())
        return std::nullopt;
    return reply;
}

} // namespace quilvane
