// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/ReadingBudget.h"

#include <memory>
#include <span>
#include <string_view>

namespace quilvane {

struct XmlAttribute {
    std::string_view uri; // of its namespace; empty without a prefix
    std::string_view name;
    std::string_view value;
};

/// What an XmlReader tells. Views hold until the call returns; that of a namespace's URI until the reader
/// goes, and the same place stands for the same URI.
class XmlHandler {
public:
    virtual ~XmlHandler() = default;
    virtual void startElement(
        std::string_view uri, std::string_view name, std::span<const XmlAttribute> attributes)
        = 0;
    virtual void endElement() = 0;
    virtual void characters(std::string_view text) = 0;
};

/// Reads one XML document, piece by piece, and tells a handler what is in it.
///
/// Call feed() until it returns false or the document is over, then finish(). Broken XML is read as far as it
/// makes sense. Reading ends where a document would cost too much: at a document type declaration, at
/// elements nested deeper than 10,000, at a tag of more than 1,000 attributes that does not end soon, when
/// the budget is spent. It opens no other file.
class XmlReader {
public:
    /// Both must outlive the reader.
    XmlReader(XmlHandler& handler, ReadingBudget& budget);
    ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    /// Whether more is wanted. Throws what the handler throws.
    bool feed(std::string_view bytes);

    /// Hands over what was held back in case more would come.
    void finish();

private:
    struct Native;
    std::unique_ptr<Native> m_native;
};

} // namespace quilvane
