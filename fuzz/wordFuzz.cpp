// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opens any bytes as a document, also with the first bytes of each kind of document before them, and as the
// XML and the relationships of a valid package, so that inputs get beyond the file's signature.
#include "documents/documentText.h"
#include "documents/pdf/pageText.h"
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
    using namespace std::string_view_literals;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    documentText(bytes);
    for (const std::string_view begin : { "PK\3\4"sv, "{\\rtf1 "sv, "<p>"sv, "\xFF\xFE<\0p\0>\0"sv,
             "\xDB\xA5-\0"sv, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv,
             "MIME-Version: 1.0\nContent-Type: multipart/x; boundary=b\n\n--b\n"sv,
             "Content-Type: text/html\nContent-Transfer-Encoding: base64\n\n"sv,
             "<w:document xmlns:w='http://schemas.openxmlformats.org/wordprocessingml/2006/main'><w:p>"sv })
        documentText(std::string(begin) + bytes);
    tidyPageText(bytes);
    const std::size_t half = size / 2;
    openAsPackage(bytes.substr(0, half), bytes.substr(half));
    return 0;
}
