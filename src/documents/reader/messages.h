// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The protocol between the program and the reader process.
//
// Over the control socket, which keeps messages apart: the reader greets; the program orders documents, each
// order with two descriptors, the file and a socket; the reader forks a child for each and never looks at a
// document itself. The program asks about a child, and tells the reader when it is done with one.
//
// Over the document's own socket the child alone speaks, in frames, and ends: of a Word document a verdict
// and the text; of a PDF document the opening, each page in turn, and the end (see PdfEnd).
//
// The program trusts neither the reader nor its children: a message that exceeds the bounds below, is too
// short or has bytes left over is refused as a whole.

namespace quilvane {

/// Descriptors. The reader has the control socket as readerSocket; a child has the document's socket there,
/// and the document's file as readerDocument. Standard input, output and error are the null device; no others
/// are open.
inline constexpr int readerSocket = 3;
inline constexpr int readerDocument = 4;

/// The exit status of a child when the memory that it may have is used up.
inline constexpr int readerOutOfMemory = 3;

inline constexpr std::size_t largestControlMessage = 1024;
/// Of one document, all pages together.
inline constexpr std::size_t longestDocumentText = std::size_t(128) << 20;
/// A document that claims to have more is read as one with this many.
inline constexpr std::uint32_t mostPdfPages = 1'000'000;
inline constexpr std::size_t longestPdfMessage = 240;
inline constexpr std::size_t mostPdfMessages = 8;
inline constexpr std::size_t largestPdfHead = mostPdfMessages * (longestPdfMessage + 4) + 64;

/// The first words of a reader.
struct ReaderGreeting {
    /// The same as the program's own if both were built from the same sources.
    std::string buildId = {};
    /// A sentence for the log if the system lacks something that closes a child in; else empty.
    std::string missing = {};

    bool operator==(const ReaderGreeting&) const = default;
};

enum class DocumentKind : std::uint8_t { Pdf, Word };

struct ReaderOrder {
    enum class Action : std::uint8_t {
        Read, ///< comes with the file and the socket; not answered
        GetCpuTime, ///< answered by milliseconds that the child has worked
        End, ///< not answered; the child is gone then, whatever it was doing
        EndAndTell, ///< answered by the status, as waitpid gives it
    };

    Action action = Action::Read;
    /// The program's number for the document.
    std::uint32_t document = 0;

    // The rest is for Read.
    DocumentKind kind = DocumentKind::Word;
    /// What the child may cost: bytes of memory, and processor time of the whole and of one page.
    std::uint64_t memory = 0;
    std::uint32_t documentSeconds = 0;
    std::uint32_t stepMilliseconds = 0;
    /// The part of the file that is the document.
    std::uint64_t offset = 0;
    std::uint64_t length = 0;

    bool operator==(const ReaderOrder&) const = default;
};

/// The answer to GetCpuTime and EndAndTell.
struct ReaderAnswer {
    std::uint32_t document = 0;
    /// Milliseconds or a status; noChild if the child could not be started or the reader has no such child.
    std::uint32_t value = 0;

    static constexpr std::uint32_t noChild = UINT32_MAX;

    bool operator==(const ReaderAnswer&) const = default;
};

/// The first frame of a Word document. After Text comes a frame that is the text itself.
enum class WordVerdict : std::uint8_t { Text, Empty, NoDocument };

/// The first frame of a PDF document. After Done come the pages.
struct PdfOpening {
    enum class Outcome : std::uint8_t { Done, Damaged, Locked };

    Outcome outcome = Outcome::Done;
    /// At most mostPdfPages.
    std::uint32_t pageCount = 0;
    /// What the PDF library said last; any bytes.
    std::string reason = {};

    bool operator==(const PdfOpening&) const = default;
};

/// A page, in the order of their numbers.
struct PdfPage {
    bool isReadable = false;
    /// UTF-8. If the page can't be read, the message of the PDF library: any bytes, longestPdfMessage at
    /// most.
    std::string text = {};

    bool operator==(const PdfPage&) const = default;
};

/// Comes after the last page, or earlier when the time has run out. Then the only page that is tried of the
/// rest is the last one: it comes after the end, if it comes.
struct PdfEnd {
    /// What the PDF library said about a document that it could read, any bytes.
    std::vector<std::string> warnings = {};

    bool operator==(const PdfEnd&) const = default;
};

/// The bytes of a message. The caller must have cut texts that are longer than their limits.
std::string encode(const ReaderGreeting& greeting);
std::string encode(const ReaderOrder& order);
std::string encode(const ReaderAnswer& answer);
std::string encode(const PdfOpening& opening);
std::string encode(const PdfPage& page);
std::string encode(const PdfEnd& end);

/// Nothing for bytes that are no result of encode().
std::optional<ReaderGreeting> decodeGreeting(std::string_view bytes);
std::optional<ReaderOrder> decodeOrder(std::string_view bytes);
std::optional<ReaderAnswer> decodeAnswer(std::string_view bytes);
std::optional<PdfOpening> decodeOpening(std::string_view bytes);
/// A frame is either a page or the end: the other function returns nothing for it.
std::optional<PdfPage> decodePage(std::string_view bytes);
std::optional<PdfEnd> decodeEnd(std::string_view bytes);

} // namespace quilvane
