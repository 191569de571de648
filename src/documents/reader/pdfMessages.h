// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the program and the child process that reads a document for it say to each other: the program sends a
// request, the child answers it with one reply, and so on until the program closes the socket. Neither trusts
// the other: what is longer than the bounds here, too short or has something left over is refused whole.

namespace quilvane {

/// The child's descriptors. It gets no other ones but the null device as standard input, output and error.
inline constexpr int pdfChildSocket = 3;
inline constexpr int pdfChildDocument = 4;

/// The child's exit status when the memory that it may have is used up.
inline constexpr int pdfChildOutOfMemory = 3;

inline constexpr std::size_t longestPdfPassword = 1024;
inline constexpr std::size_t longestPdfText = std::size_t(64) << 20;
inline constexpr std::size_t longestPdfMessage = 240;
/// Of one document. Each is a dialog that the user has to answer.
inline constexpr std::size_t mostPdfMessages = 8;
/// More than what the largest request or reply takes.
inline constexpr std::size_t largestPdfRequest = longestPdfPassword + 64;
inline constexpr std::size_t largestPdfReply
    = longestPdfText + mostPdfMessages * (longestPdfMessage + 4) + 64;

struct PdfRequest {
    enum class Operation : std::uint8_t { Open, EditPage, ExtractText };

    Operation operation = Operation::Open;
    /// For EditPage, from 1; any number.
    std::int32_t page = 0;
    /// For Open.
    std::string password = {};

    bool operator==(const PdfRequest&) const = default;
};

struct PdfReply {
    enum class Outcome : std::uint8_t { Done, Damaged, Locked, NoSuchPage };

    Outcome outcome = Outcome::Done;
    /// Of Open, not negative.
    std::int32_t pageCount = 0;
    /// Of ExtractText, UTF-8.
    std::string text = {};
    /// What the PDF library said during the operation, whether it succeeded or not; any bytes.
    std::vector<std::string> messages = {};

    bool operator==(const PdfReply&) const = default;
};

/// The bytes of a message. What is longer than its bound must have been cut before.
std::string encode(const PdfRequest& request);
std::string encode(const PdfReply& reply);

/// Nothing for bytes that encode never makes.
std::optional<PdfRequest> decodeRequest(std::string_view bytes);
std::optional<PdfReply> decodeReply(std::string_view bytes);

} // namespace quilvane
