// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileTypes2.h"

#include <cstddef>
#include <optional>

namespace quilvane::FileTypes2 {

namespace {

struct Row {
    const char* name;
    const char* extensions;
    const char* macType;
    const char* macCreator;
    const char* conformsTo;
    std::optional<const char*> uti;
};

// The last two rows share a name. A lookup by name finds the first, so the second has no effect. Both have
// always been in this table.
// clang-format off
constexpr Row table[] = {
    { "Untitled",                 "",           "",     "",     "", {} },
    { "application/pdf",          ".pdf",       "PDF ", "prvw", "public.data, public.composite-content", "com.adobe.pdf" },
    { "text/plain",               ".asc;.ascii;.bas;.c;.class;.cp;.cpp;.h;.hp;.hpp;.i3;.java;.m2;.m3;.mak;.text;.txt",
                                                "TEXT", "????", "public.data, public.content", "public.text" },
    { "application/msword",       ".doc;.docx", "WDBN", "MSWD", "", {} },
    { "application/vnd.ms-excel", ".xl;.xls",   "XLS ", "XCEL", "", {} },
    { "application/vnd.ms-excel", ".xl",        "XLS ", "XCEL", "", {} },
};
// clang-format on

std::vector<Ref<FileType>> kept;

Ref<FileType> typeOfRow(std::size_t row)
{
    return row < kept.size() ? kept[row] : Ref<FileType>();
}

} // namespace

void _Initialize()
{
    kept.clear();
    for (const Row& row : table) {
        kept.push_back(Ref<FileType>::make(FileType{ .Name = row.name,
            .Extensions = row.extensions,
            .MacType = row.macType,
            .MacCreator = row.macCreator,
            .ConformsTo = row.conformsTo,
            .UTI = row.uti,
            .MimeType = {},
            .Imported = true }));
    }
    FileType::declare(kept);
}

const std::vector<Ref<FileType>>& types()
{
    return kept;
}

Ref<FileType> Untitled()
{
    return typeOfRow(0);
}

Ref<FileType> Pdf()
{
    return typeOfRow(1);
}

Ref<FileType> Text()
{
    return typeOfRow(2);
}

Ref<FileType> ApplicationMsword()
{
    return typeOfRow(3);
}

Ref<FileType> ApplicationVndMsExcel()
{
    return typeOfRow(4);
}

Ref<FileType> ApplicationVndMsExcel1()
{
    return typeOfRow(5);
}

} // namespace quilvane::FileTypes2
