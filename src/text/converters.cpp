// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/converters.h"

#include "text/ascii.h"

#include <algorithm>
#include <iterator>

#include <iconv.h>

namespace quilvane {

namespace {

struct Row {
    std::string_view label;
    const char* name;
};

// The labels that pages and mail use. Where the web takes a name for a larger set (Latin 1 for windows-1252,
// GB 2312 for GBK), so does this.
constexpr Row rows[] = {
    { "utf-8", "UTF-8" },
    { "utf8", "UTF-8" },
    { "utf-16", "UTF-16" },
    { "utf-16le", "UTF-16LE" },
    { "utf-16be", "UTF-16BE" },
    { "utf-32", "UTF-32" },
    { "utf-32le", "UTF-32LE" },
    { "utf-32be", "UTF-32BE" },
    { "utf-7", "UTF-7" },
    { "us-ascii", "CP1252" },
    { "ascii", "CP1252" },
    { "iso-8859-1", "CP1252" },
    { "iso8859-1", "CP1252" },
    { "latin1", "CP1252" },
    { "windows-1252", "CP1252" },
    { "cp1252", "CP1252" },
    { "x-cp1252", "CP1252" },
    { "iso-8859-2", "ISO-8859-2" },
    { "latin2", "ISO-8859-2" },
    { "iso-8859-3", "ISO-8859-3" },
    { "iso-8859-4", "ISO-8859-4" },
    { "iso-8859-5", "ISO-8859-5" },
    { "iso-8859-6", "ISO-8859-6" },
    { "iso-8859-7", "ISO-8859-7" },
    { "iso-8859-8", "ISO-8859-8" },
    { "iso-8859-8-i", "ISO-8859-8" },
    { "iso-8859-9", "CP1254" },
    { "latin5", "CP1254" },
    { "iso-8859-10", "ISO-8859-10" },
    { "iso-8859-11", "CP874" },
    { "iso-8859-13", "ISO-8859-13" },
    { "iso-8859-14", "ISO-8859-14" },
    { "iso-8859-15", "ISO-8859-15" },
    { "latin-9", "ISO-8859-15" },
    { "iso-8859-16", "ISO-8859-16" },
    { "windows-874", "CP874" },
    { "tis-620", "CP874" },
    { "windows-1250", "CP1250" },
    { "cp1250", "CP1250" },
    { "windows-1251", "CP1251" },
    { "cp1251", "CP1251" },
    { "windows-1253", "CP1253" },
    { "windows-1254", "CP1254" },
    { "windows-1255", "CP1255" },
    { "windows-1256", "CP1256" },
    { "windows-1257", "CP1257" },
    { "windows-1258", "CP1258" },
    { "koi8-r", "KOI8-R" },
    { "koi8-u", "KOI8-U" },
    { "ibm437", "CP437" },
    { "cp437", "CP437" },
    { "ibm850", "CP850" },
    { "cp850", "CP850" },
    { "ibm852", "CP852" },
    { "ibm855", "CP855" },
    { "ibm866", "CP866" },
    { "cp866", "CP866" },
    { "macintosh", "MACINTOSH" },
    { "x-mac-roman", "MACINTOSH" },
    { "x-mac-cyrillic", "MAC-CYRILLIC" },
    { "gb2312", "GBK" },
    { "gbk", "GBK" },
    { "x-gbk", "GBK" },
    { "gb18030", "GB18030" },
    { "hz-gb-2312", "GBK" },
    { "big5", "BIG5-HKSCS" },
    { "big5-hkscs", "BIG5-HKSCS" },
    { "shift_jis", "CP932" },
    { "shift-jis", "CP932" },
    { "sjis", "CP932" },
    { "x-sjis", "CP932" },
    { "windows-31j", "CP932" },
    { "euc-jp", "EUC-JP" },
    { "iso-2022-jp", "ISO-2022-JP" },
    { "euc-kr", "CP949" },
    { "ks_c_5601-1987", "CP949" },
    { "windows-949", "CP949" },
    { "iso-2022-kr", "ISO-2022-KR" },
};

/// Besides these: the code pages of Word's own formats.
constexpr const char* codePages[] = { "CP932", "CP936", "CP949", "CP950", "CP1361" };

} // namespace

const char* converterName(std::string_view label)
{
    const auto* const row = std::find_if(std::begin(rows), std::end(rows),
        [label](const Row& r) { return equalsIgnoringCase(r.label, label); });
    return row == std::end(rows) ? nullptr : row->name;
}

void keepConvertersLoaded()
{
    // Never closed: the library unloads the code of a converter some time after its last user has gone.
    for (const Row& row : rows)
        iconv_open("UTF-8", row.name);
    for (const char* const page : codePages)
        iconv_open("UTF-32LE", page);
    iconv_open("UTF-16", "UTF-8");
}

} // namespace quilvane
