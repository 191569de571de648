// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace quilvane {

/// The text of a page's body as a reader sees it, UTF-8: scripts and styles are left out, white space is
/// joined, and each block element has its own lines. Style sheets are ignored, and no script is run;
/// characters are in their plain forms (see plainForm()). The addresses in mailto: links come after the text,
/// one a line, except those that are only the tail of an address in the text. Takes any bytes, loads nothing,
/// and looks at each byte a bounded number of times.
///
/// The character set is that of a byte order mark, else `charset`, else what the page's head names, else
/// UTF-8 if the page is valid in it, else windows-1252.
std::string htmlBodyText(std::string_view html, const std::string& charset = {});

/// Whether a file is a web page. Decided by its first tags; comments may come before them.
bool looksLikeHtml(std::string_view bytes);

} // namespace quilvane
