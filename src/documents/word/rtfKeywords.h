// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

/// What a control word of RTF does to the text.
enum class RtfAction {
    Character, // the value
    LineEnd,
    ParagraphEnd,
    Skip, // the group holds no text
    Transparent, // of a group that readers may skip: its text counts
    Aside, // of a group: a text of its own
    FieldCode,
    FontTable,
    DocumentCodePage,
    CodePage, // the value
    DefaultFont,
    Font,
    FontCharset,
    FallbackLength,
    Unicode,
    Binary,
    Deleted,
    ResetCharacters,
};

struct RtfKeyword {
    std::string_view name;
    RtfAction action;
    int value = 0;
};

/// Null for a word that describes only how the text looks.
const RtfKeyword* findRtfKeyword(std::string_view name);

} // namespace quilvane
