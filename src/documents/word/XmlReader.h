// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string_view>

namespace quilvane {

struct XmlAttribute {
    std::string_view uri; // of its namespace; empty without a prefix
    std::string_view name;
    std::string_view value;
};

/// Gets the events of readXml(). Views are valid until the call returns. The view of a namespace's URI is
/// valid until readXml() returns, and the same data() always means the same URI.
class XmlHandler {
public:
    virtual ~XmlHandler() = default;
    virtual void startElement(
        std::string_view uri, std::string_view name, std::span<const XmlAttribute> attributes)
        = 0;
    virtual void endElement() = 0;
    virtual void characters(std::string_view text) = 0;
};

/// Reads an XML document and tells a handler what is in it; each startElement() has its endElement(). What is
/// damaged is passed over up to the next tag, and an end tag that comes too early closes what is open in its
/// element. Reading ends at a document type declaration, before any entity is declared, and at elements
/// nested deeper than 10,000; of an element's attributes, 1,000 count.
///
/// Reads XML 1.0 by itself: expat takes three times as long, gives up at the first damage, and keeps every
/// name that it has seen; libxml2 takes time that grows with the square of a tag. Looks at each byte a
/// bounded number of times, keeps views, and opens no other file. Throws what the handler throws.
void readXml(std::string_view xml, XmlHandler& handler);

} // namespace quilvane
