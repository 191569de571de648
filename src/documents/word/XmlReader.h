// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/ReadingBudget.h"

#include <span>
#include <string_view>

namespace quilvane {

struct XmlAttribute {
    std::string_view uri; // of its namespace; empty without a prefix
    std::string_view name;
    std::string_view value;
};

/// What readXml() tells. Views hold until the call returns. Namespaces of more than 255 bytes count as none.
class XmlHandler {
public:
    virtual ~XmlHandler() = default;
    virtual void startElement(
        std::string_view uri, std::string_view name, std::span<const XmlAttribute> attributes)
        = 0;
    virtual void endElement() = 0;
    virtual void characters(std::string_view text) = 0;
};

/// Reads an XML document and tells a handler what is in it. What is damaged is passed over up to the next
/// tag; an end tag that comes too early closes what is open in its element. Reading ends where the budget's
/// places of damage do, at a document type declaration, before any entity is declared, and where elements in
/// elements, attributes or names are so many that keeping them takes more than 64 MB. Time is linear in the
/// bytes. It opens no other file. Throws what the handler throws.
void readXml(std::string_view xml, XmlHandler& handler, ReadingBudget& budget);

} // namespace quilvane
