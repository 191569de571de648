// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/ReadingBudget.h"

#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

/// The text of a Word document that is a package of XML parts in a zip archive (.docx and its kin), UTF-8:
/// the body first, then what it refers to, then headers, footers, notes and comments. A damaged package gives
/// what can still be unpacked. Nothing if it holds no word processor's document.
std::optional<std::string> textOfOpenXml(std::string_view zip, ReadingBudget& budget);

/// The text of a Word document that is one XML file: Word 2003 XML, or the parts of a package one after the
/// other (flat OPC). Documents embedded in the latter are not read. Nothing for any other XML.
std::optional<std::string> textOfFlatXml(std::string_view xml, ReadingBudget& budget);

} // namespace quilvane
