// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/html/mimeMessage.h"

#include "text/ascii.h"
#include "text/charset.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace quilvane {

namespace {

constexpr std::string_view blanks = " \t\r\n";

/// The next line without its end; takes it from `text`.
std::string_view takeLine(std::string_view& text)
{
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// What the header of a message or of a part says of its body.
struct MimeHeader {
    std::string contentType;
    std::string encoding;
    bool isMime = false;
};

/// Takes the header and the empty line after it from `text`. Nothing if a line is no part of a header.
std::optional<MimeHeader> takeHeader(std::string_view& text)
{
    constexpr std::size_t longest = std::size_t(1) << 16;
    std::string_view rest = text.substr(0, longest);
    MimeHeader header;
    std::string* value = nullptr;
    while (!rest.empty()) {
        const std::string_view line = takeLine(rest);
        if (line.empty()) {
            text.remove_prefix(static_cast<std::size_t>(rest.data() - text.data()));
            return header;
        }
        if (line.front() == ' ' || line.front() == '\t') { // goes on with the line before it
            if (value)
                value->append(line);
            continue;
        }
        const std::string_view name = line.substr(0, line.find(':'));
        const bool isName = !name.empty() && name.size() < line.size()
            && std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c <= '~'; });
        if (!isName)
            return {};
        value = nullptr;
        if (equalsIgnoringCase(name, "Content-Type"))
            value = &header.contentType;
        else if (equalsIgnoringCase(name, "Content-Transfer-Encoding"))
            value = &header.encoding;
        header.isMime = header.isMime || value || equalsIgnoringCase(name, "MIME-Version");
        if (value)
            *value = withoutLeading(line.substr(name.size() + 1), blanks);
    }
    return {};
}

/// What stands between the parts of a multipart body; empty for any other body.
std::string boundaryIn(std::string_view contentType)
{
    constexpr std::string_view key = "boundary=";
    if (!beginsIgnoringCase(contentType, "multipart/"))
        return {};
    while (!contentType.empty() && !beginsIgnoringCase(contentType, key))
        contentType.remove_prefix(1);
    contentType.remove_prefix(std::min(key.size(), contentType.size()));
    const bool isQuoted = contentType.starts_with('"');
    contentType = contentType.substr(isQuoted ? 1 : 0);
    return std::string(contentType.substr(0, contentType.find_first_of(isQuoted ? "\"" : " \t;")));
}

/// RFC 2045, section 6.7. A '=' without two digits stays.
std::string quotedPrintableDecoded(std::string_view body)
{
    std::string decoded;
    while (!body.empty()) {
        const std::size_t mark = std::min(body.find('='), body.size());
        decoded += body.substr(0, mark);
        body.remove_prefix(mark);
        std::uint8_t byte = 0;
        const std::string_view digits = body.substr(std::min<std::size_t>(1, body.size()), 2);
        if (body.starts_with("=\n") || body.starts_with("=\r\n")) {
            takeLine(body);
        } else if (digits.size() == 2
            && std::from_chars(digits.data(), digits.data() + 2, byte, 16).ptr == digits.data() + 2) {
            decoded += static_cast<char>(byte);
            body.remove_prefix(3);
        } else {
            decoded += body.substr(0, 1);
            body.remove_prefix(std::min<std::size_t>(1, body.size()));
        }
    }
    return decoded;
}

/// RFC 2045, section 6.8. Other characters are skipped.
std::string base64Decoded(std::string_view body)
{
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string decoded;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : body.substr(0, body.find('='))) {
        const std::size_t digit = digits.find(c);
        if (digit == std::string_view::npos)
            continue;
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        count += 6;
        if (count >= 8) {
            count -= 8;
            decoded += static_cast<char>(bits >> count & 0xFF);
        }
    }
    return decoded;
}

std::string decoded(std::string_view body, std::string_view encoding)
{
    if (beginsIgnoringCase(encoding, "quoted-printable"))
        return quotedPrintableDecoded(body);
    if (beginsIgnoringCase(encoding, "base64"))
        return base64Decoded(body);
    return std::string(body);
}

void collectParts(std::string_view entity, int depth, std::vector<HtmlPart>& parts);

/// The parts stand between lines that begin with two hyphens and the boundary (RFC 2046, section 5.1.1).
void collectPartsBetween(
    std::string_view body, const std::string& boundary, int depth, std::vector<HtmlPart>& parts)
{
    const std::string mark = "--" + boundary;
    const char* begin = nullptr; // of the part; what comes before the first mark is none
    while (!body.empty()) {
        const char* const lineBegin = body.data();
        const bool isMark = takeLine(body).starts_with(mark);
        if (isMark && begin)
            collectParts({ begin, static_cast<std::size_t>(lineBegin - begin) }, depth, parts);
        if (isMark)
            begin = body.data();
    }
    if (begin) // a message that is cut off
        collectParts({ begin, static_cast<std::size_t>(body.data() - begin) }, depth, parts);
}

void collectParts(std::string_view entity, int depth, std::vector<HtmlPart>& parts)
{
    const std::optional<MimeHeader> header = takeHeader(entity);
    if (!header || depth == 0)
        return;
    const std::string boundary = boundaryIn(header->contentType);
    if (!boundary.empty())
        collectPartsBetween(entity, boundary, depth - 1, parts);
    else if (beginsIgnoringCase(header->contentType, "text/html"))
        parts.push_back({ decoded(entity, header->encoding), charsetNamedIn(header->contentType) });
}

} // namespace

std::vector<HtmlPart> htmlPartsOf(std::string_view message)
{
    constexpr int deepest = 4; // of parts in parts
    message = withoutLeading(message, blanks);
    std::string_view rest = message;
    const std::optional<MimeHeader> header = takeHeader(rest);
    std::vector<HtmlPart> parts;
    if (header && header->isMime)
        collectParts(message, deepest, parts);
    return parts;
}

} // namespace quilvane
