// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/word/rtfKeywords.h"

#include "text/TextDecoder.h"

#include <algorithm>
#include <iterator>

namespace quilvane {

namespace {

/// Sorted by name.
constexpr RtfKeyword keywords[] = {
    { "annotation", RtfAction::Aside },
    { "ansicpg", RtfAction::DocumentCodePage },
    { "bin", RtfAction::Binary },
    { "bullet", RtfAction::Character, 0x2022 },
    { "cell", RtfAction::Character, '\t' },
    { "colortbl", RtfAction::Skip },
    { "column", RtfAction::ParagraphEnd },
    { "deff", RtfAction::DefaultFont },
    { "deleted", RtfAction::Deleted },
    { "do", RtfAction::Transparent },
    { "dptxbxtext", RtfAction::Aside },
    { "emdash", RtfAction::Character, 0x2014 },
    { "emspace", RtfAction::Character, ' ' },
    { "endash", RtfAction::Character, 0x2013 },
    { "enspace", RtfAction::Character, ' ' },
    { "f", RtfAction::Font },
    { "fcharset", RtfAction::FontCharset },
    { "fldinst", RtfAction::FieldCode },
    { "fonttbl", RtfAction::FontTable },
    { "footer", RtfAction::Aside },
    { "footerf", RtfAction::Aside },
    { "footerl", RtfAction::Aside },
    { "footerr", RtfAction::Aside },
    { "footnote", RtfAction::Aside },
    { "header", RtfAction::Aside },
    { "headerf", RtfAction::Aside },
    { "headerl", RtfAction::Aside },
    { "headerr", RtfAction::Aside },
    { "info", RtfAction::Skip },
    { "ldblquote", RtfAction::Character, 0x201C },
    { "line", RtfAction::LineEnd },
    { "lquote", RtfAction::Character, 0x2018 },
    { "mac", RtfAction::CodePage, codePages::macintosh },
    { "nestcell", RtfAction::Character, '\t' },
    { "nestrow", RtfAction::ParagraphEnd },
    { "nonshppict", RtfAction::Skip },
    { "objdata", RtfAction::Skip },
    { "page", RtfAction::ParagraphEnd },
    { "par", RtfAction::ParagraphEnd },
    { "pc", RtfAction::CodePage, 437 },
    { "pca", RtfAction::CodePage, 850 },
    { "pict", RtfAction::Skip },
    { "plain", RtfAction::ResetCharacters },
    { "qmspace", RtfAction::Character, ' ' },
    { "rdblquote", RtfAction::Character, 0x201D },
    { "row", RtfAction::ParagraphEnd },
    { "rquote", RtfAction::Character, 0x2019 },
    { "rxe", RtfAction::Skip },
    { "sect", RtfAction::ParagraphEnd },
    { "shpinst", RtfAction::Transparent },
    { "shprslt", RtfAction::Skip }, // the shape's text once more, for old readers
    { "shptxt", RtfAction::Aside },
    { "softline", RtfAction::LineEnd },
    { "sp", RtfAction::Skip },
    { "stylesheet", RtfAction::Skip },
    { "tab", RtfAction::Character, '\t' },
    { "tc", RtfAction::Skip }, // entries of tables of contents and of the index
    { "tcn", RtfAction::Skip },
    { "u", RtfAction::Unicode },
    { "uc", RtfAction::FallbackLength },
    { "xe", RtfAction::Skip },
};

static_assert(std::is_sorted(std::begin(keywords), std::end(keywords),
    [](const RtfKeyword& left, const RtfKeyword& right) { return left.name < right.name; }));

} // namespace

const RtfKeyword* findRtfKeyword(std::string_view name)
{
    const auto* found = std::lower_bound(std::begin(keywords), std::end(keywords), name,
        [](const RtfKeyword& keyword, std::string_view wanted) { return keyword.name < wanted; });
    return found != std::end(keywords) && found->name == name ? found : nullptr;
}

} // namespace quilvane
