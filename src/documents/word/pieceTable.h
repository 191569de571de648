// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/word/WordHeader.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace quilvane {

/// A stretch of a document's text. The text is the sequence of its pieces, which may be anywhere in the main
/// stream: a fast-saved document has its later changes at the stream's end.
struct Piece {
    std::size_t begin; // a byte of the main stream
    std::size_t characters;
    /// UTF-16 instead of 8-bit.
    bool isWide;
    bool isDeleted;
};

/// The pieces of all texts of the document, the body first. Nothing if their table is missing or damaged. A
/// piece may reach beyond the end of the main stream.
std::optional<std::vector<Piece>> readPieceTable(const WordHeader& header, std::string_view tableStream);

} // namespace quilvane
