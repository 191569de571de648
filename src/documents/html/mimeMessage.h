// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

struct HtmlPart {
    std::string html; // decoded
    std::string charset; // as the part's header names it; empty if it names none
};

/// The web pages in a mail message or a web page saved as one file (MHTML, RFC 2557), in their order. None
/// for bytes that don't begin with a MIME header. Linear in the bytes.
std::vector<HtmlPart> htmlPartsOf(std::string_view message);

} // namespace quilvane
