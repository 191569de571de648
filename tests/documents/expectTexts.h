// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace quilvane {

inline std::string repeated(std::string_view text, std::size_t count)
{
    std::string result;
    for (result.reserve(text.size() * count); count > 0; --count)
        result += text;
    return result;
}

/// A document, or a part of one, and its text.
struct TextCase {
    const char* name;
    std::string source;
    std::string text;
};

/// Expects the text of each case from `textOf`, but for blanks and line ends at its end; "(nil)" stands for
/// no text.
inline void expectTexts(
    std::optional<std::string> (*textOf)(std::string_view source), std::initializer_list<TextCase> cases)
{
    for (const TextCase& each : cases) {
        const std::string text = textOf(each.source).value_or("(nil)");
        EXPECT_EQ(text.substr(0, text.find_last_not_of(" \t\n") + 1), each.text) << each.name;
    }
}

} // namespace quilvane
