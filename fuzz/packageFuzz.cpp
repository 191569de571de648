// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Packages with many entries and relationships. The input is a list of small commands: add files under the
// names of a few parts, list files again under other names, let parts refer to each other.
#include "documents/documentText.h"
#include "support/ZipBuilder.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace {

using namespace quilvane;

constexpr ZipBuilder::Method stored = ZipBuilder::Method::Stored;

class Script {
public:
    explicit Script(std::string_view bytes)
        : m_rest(bytes)
    {
    }

    bool isOver() const { return m_rest.empty(); }

    std::size_t number()
    {
        const std::size_t value = m_rest.empty() ? 0 : static_cast<std::uint8_t>(m_rest.front());
        m_rest.remove_prefix(m_rest.empty() ? 0 : 1);
        return value;
    }

    std::string text()
    {
        const std::size_t size = number();
        const std::string result(m_rest.substr(0, size));
        m_rest.remove_prefix(result.size());
        return result;
    }

    std::string part()
    {
        constexpr std::string_view names[]
            = { "word/document.xml", "/word/../word/a.xml", "word\\b.xml", "c.docx", "" };
        const std::size_t index = number() % (std::size(names) + 1);
        return index < std::size(names) ? std::string(names[index]) : text();
    }

private:
    std::string_view m_rest;
};

std::string relationshipsOf(Script& script)
{
    constexpr std::string_view types[] = { "officeDocument", "header", "chart", "aFChunk", "hyperlink" };
    std::string xml = "<Relationships>";
    const std::size_t times = script.number();
    const std::string target = script.part();
    for (std::size_t i = 0; i <= times; ++i)
        xml.append("<Relationship Id='")
            .append(std::to_string(i))
            .append("' Type='/")
            .append(types[(script.number() + i) % std::size(types)])
            .append("' Target='")
            .append(target)
            .append("'/>");
    return xml;
}

std::string documentOf(Script& script)
{
    std::string xml
        = R"(<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main")"
          R"( xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"><w:p>)";
    const std::size_t times = script.number();
    for (std::size_t i = 0; i < times; ++i)
        xml += "<w:t r:id='" + std::to_string(i) + "'>a@x.org</w:t>";
    return xml + script.text();
}

void run(Script& script, ZipBuilder& zip)
{
    switch (script.number() % 5) {
    case 0: {
        const std::string part = script.part();
        const std::size_t folder = part.rfind('/') + 1;
        zip.add(part.substr(0, folder) + "_rels/" + part.substr(folder) + ".rels", relationshipsOf(script),
            stored);
        break;
    }
    case 1:
        zip.add(script.part(), documentOf(script), stored);
        break;
    case 2:
        zip.add(script.part(), script.text(), stored);
        break;
    case 3:
        for (std::size_t times = script.number() * 16; times > 0; --times)
            zip.list("any", script.isOver() ? 0 : script.number(), stored);
        break;
    default:
        zip.add(script.part(), zip.archive(), stored); // the archive so far, as a file in itself
    }
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): libFuzzer gives the name
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t largest = std::size_t(1) << 20;
    Script script({ reinterpret_cast<const char*>(data), size });
    ZipBuilder zip;
    while (!script.isOver() && zip.archive().size() < largest)
        run(script, zip);
    const std::string archive = zip.archive();
    documentText(archive);
    documentText(
        std::string_view(archive).substr(0, archive.size() - archive.size() / 4)); // without a directory
    return 0;
}
