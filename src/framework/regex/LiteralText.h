// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// A pattern that is only a text to be found, ignoring ASCII case. Most keywords are, and to search a short
/// row for a text takes a fraction of the time of a call of the expression engine.
class LiteralText {
public:
    /// Nothing for a pattern with an operator in it, an empty one, and one of more than 64 bytes: in the
    /// worst case the time of a search is the product of both lengths.
    static std::optional<LiteralText> of(std::string_view pattern);

    /// The first place of the pattern in `text` at `start` or after it; npos if there is none.
    std::size_t find(std::string_view text, std::size_t start) const;

    std::size_t size() const { return m_folded.size(); }

private:
    explicit LiteralText(std::string folded);

    bool standsAt(const char* text) const;

    std::string m_folded;
};

} // namespace quilvane
