// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opens any bytes as a document, and as the XML and the relationships of a sound package, so that not every
// input ends at its first mark.
#include "documents/documentText.h"
#include "support/ZipBuilder.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace quilvane;

constexpr std::string_view root
    = R"(<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main")"
      R"( xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships")"
      R"( xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main")"
      R"( xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006"><w:p>)";

void openAsPackage(std::string_view relationships, std::string_view xml)
{
    constexpr ZipBuilder::Method stored = ZipBuilder::Method::Stored;
    documentText(ZipBuilder()
                     .add("word/document.xml", std::string(root) + std::string(xml), stored)
                     .add("word/_rels/document.xml.rels", relationships, stored)
                     .add("word/embedded", xml, stored)
                     .archive());
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): libFuzzer gives the name
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    documentText(bytes);
    documentText(std::string("PK\3\4") + std::string(bytes));
    openAsPackage(bytes.substr(0, size / 2), bytes.substr(size / 2));
    return 0;
}
