// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// A pattern that is nothing but a text to be found, ignoring ASCII case. Most keywords are, and a short row
/// is searched for a text in a fraction of the time that it takes to enter the expression engine.
class LiteralText {
public:
    /// Nothing for a pattern with an operator in it, an empty one, and one of more than 64 bytes, as the
    /// search takes the product of both lengths at worst.
    static std::optional<LiteralText> of(std::string_view pattern);

    /// Where the text first stands in `text` at `start` or after it; npos if nowhere.
    std::size_t find(std::string_view text, std::size_t start) const;

    std::size_t size() const { return m_folded.size(); }

private:
    explicit LiteralText(std::string folded);

    bool standsAt(const char* text) const;

    std::string m_folded;
};

} // namespace quilvane
