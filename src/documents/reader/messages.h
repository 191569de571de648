// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the program and the reader process say to each other.
//
// Over the control socket, which keeps messages apart: the reader greets; the program orders documents, each
// order with two descriptors, the file and a socket; the reader forks a child for each and never looks at a
// document itself. The program asks about a child, and tells the reader when it is done with one.
//
// Over the document's own socket the child alone speaks, in frames, and ends: of a Word document a verdict
// and the text; of a PDF document the opening, each page in turn, and the end.
//
// The program trusts neither: what is longer than the bounds here, too short or has something left over is
// refused whole.

namespace quilvane {

/// The reader's descriptor for the control socket, and of its children the document's socket and its file.
/// They get no other ones but the null device as standard input, output and error.
inline constexpr int readerSocket = 3;
inline constexpr int readerDocument = 4;

/// The exit status of a child when the memory that it may have is used up.
inline constexpr int readerOutOfMemory = 3;

inline constexpr std::size_t largestControlMessage = 1024;
/// Of one document, all pages together.
inline constexpr std::size_t longestDocumentText = std::size_t(128) << 20;
/// A document that says it has more has these.
inline constexpr std::uint32_t mostPdfPages = 1'000'000;
inline constexpr std::size_t longestPdfMessage = 240;
inline constexpr std::size_t mostPdfMessages = 8;
inline constexpr std::size_t largestPdfHead = mostPdfMessages * (longestPdfMessage + 4) + 64;

/// The first words of a reader.
struct ReaderGreeting {
    /// Of a reader that was built with the program it is the program's own.
    std::string buildId = {};
    /// What the system does not offer to close a child in, as a sentence for the log; else empty.
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
    /// Milliseconds or a status. Of a child that could not be started, or is none of the reader's: noChild.
    std::uint32_t value = 0;

    static constexpr std::uint32_t noChild = UINT32_MAX;

    bool operator==(const ReaderAnswer&) const = default;
};

/// The first frame of a Word document. A text follows it, in a frame of its own and as it is.
enum class WordVerdict : std::uint8_t { Text, Empty, NoDocument };

/// The first frame of a PDF document. Of a Done one, pages follow.
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
    /// UTF-8; of one that can't be read what the PDF library said, longestPdfMessage at most, any bytes.
    std::string text = {};

    bool operator==(const PdfPage&) const = default;
};

/// After the last page, or earlier: the pages that are missing then were not tried, for want of time.
struct PdfEnd {
    /// What the PDF library said about a document that it could read, any bytes.
    std::vector<std::string> warnings = {};

    bool operator==(const PdfEnd&) const = default;
};

/// The bytes of a message. What is longer than its bound must have been cut before.
std::string encode(const ReaderGreeting& greeting);
std::string encode(const ReaderOrder& order);
std::string encode(const ReaderAnswer& answer);
std::string encode(const PdfOpening& opening);
std::string encode(const PdfPage& page);
std::string encode(const PdfEnd& end);

/// Nothing for bytes that encode never makes.
std::optional<ReaderGreeting> decodeGreeting(std::string_view bytes);
std::optional<ReaderOrder> decodeOrder(std::string_view bytes);
std::optional<ReaderAnswer> decodeAnswer(std::string_view bytes);
std::optional<PdfOpening> decodeOpening(std::string_view bytes);
/// Of these two a frame is one or the other.
std::optional<PdfPage> decodePage(std::string_view bytes);
std::optional<PdfEnd> decodeEnd(std::string_view bytes);

} // namespace quilvane
