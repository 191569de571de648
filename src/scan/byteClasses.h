// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quilvane {

/// The classes of bytes in an address; bytes above 127 belong to none.
struct ByteClass {
    static constexpr std::uint8_t letter = 1;
    static constexpr std::uint8_t digit = 2;
    static constexpr std::uint8_t underscore = 4;
    static constexpr std::uint8_t dotOrDash = 8;
    static constexpr std::uint8_t percentOrPlus = 16;

    static constexpr std::uint8_t word = letter | digit | underscore;
    static constexpr std::uint8_t domain = letter | digit | dotOrDash;
    static constexpr std::uint8_t localPart = word | dotOrDash | percentOrPlus;
};

inline constexpr std::array<std::uint8_t, 256> byteClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    for (std::size_t i = 0; i < 26; ++i)
        classes['A' + i] = classes['a' + i] = ByteClass::letter;
    for (std::size_t i = 0; i < 10; ++i)
        classes['0' + i] = ByteClass::digit;
    classes['_'] = ByteClass::underscore;
    classes['.'] = classes['-'] = ByteClass::dotOrDash;
    classes['%'] = classes['+'] = ByteClass::percentOrPlus;
    return classes;
}();

/// Whether the byte belongs to one of `classes`, which are joined by |.
constexpr bool isOf(char byte, std::uint8_t classes)
{
    return (byteClasses[static_cast<unsigned char>(byte)] & classes) != 0;
}

} // namespace quilvane
