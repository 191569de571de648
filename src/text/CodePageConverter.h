// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace quilvane {

/// The system's converter from one code page into UTF-8. The only place that opens converters, and only by
/// the names in its own table, never by a name from a document. One for each thread and code page, kept as
/// long as the thread.
class CodePageConverter {
public:
    /// For an unknown code page, the one of Western Europe.
    static CodePageConverter& of(int codePage);
    static void openAll();

    explicit CodePageConverter(const char* name);
    ~CodePageConverter();
    CodePageConverter(const CodePageConverter&) = delete;
    CodePageConverter& operator=(const CodePageConverter&) = delete;

    static constexpr char32_t incomplete = 0xFFFFFFFF;
    /// The one character that the bytes are: U+FFFD if they are none, `incomplete` if others must follow.
    char32_t character(std::string_view bytes);
    /// The same for the one byte 128 + `index`.
    char32_t upperCharacter(std::size_t index) const { return m_upper[index]; }

    std::string toUtf8(std::string_view bytes);

private:
    void close();

    /// If the system has no such converter, each use fails and every character is U+FFFD. Null once m_upper
    /// holds all that it could tell, as it does for a set of one byte a character: a process that holds fewer
    /// libraries forks faster.
    void* m_native;
    bool m_holdsBack = false; // a letter, until what follows is known
    std::array<char32_t, 128> m_upper;
};

} // namespace quilvane
