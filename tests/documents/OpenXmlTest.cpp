// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/documentText.h"
#include "support/TempFolder.h"
#include "support/ZipBuilder.h"

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace quilvane {

namespace {

constexpr std::size_t megabyte = std::size_t(1) << 20;

using Parts = std::initializer_list<std::pair<std::string, std::string>>;

std::string textOf(std::string_view bytes)
{
    return documentText(bytes).value_or("(nil)");
}

std::string repeated(std::string_view text, std::size_t count)
{
    std::string result;
    for (result.reserve(text.size() * count); count > 0; --count)
        result += text;
    return result;
}

/// An element with declarations of the namespaces that parts use.
std::string element(const std::string& name, const std::string& content)
{
    return "<" + name
        + R"( xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main")"
          R"( xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships")"
          R"( xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main")"
          R"( xmlns:c="http://schemas.openxmlformats.org/drawingml/2006/chart")"
          R"( xmlns:m="http://schemas.openxmlformats.org/officeDocument/2006/math")"
          R"( xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006")"
          R"( xmlns:v="urn:schemas-microsoft-com:vml">)"
        + content + "</" + name + ">";
}

std::string document(const std::string& body)
{
    return element("w:document", "<w:body>" + body + "</w:body>");
}

std::string paragraph(const std::string& text)
{
    return "<w:p><w:r><w:t>" + text + "</w:t></w:r></w:p>";
}

std::string relationship(
    const std::string& id, const std::string& type, const std::string& target, bool isExternal = false)
{
    return "<Relationship Id=\"" + id + "\" Type=\"http://any.example/" + type + "\" Target=\"" + target
        + (isExternal ? "\" TargetMode=\"External\"/>" : "\"/>");
}

std::string relationships(const std::string& content)
{
    return "<Relationships>" + content + "</Relationships>";
}

const std::string toMainPart = relationships(relationship("m", "officeDocument", "word/document.xml"));

std::string package(Parts parts)
{
    ZipBuilder zip;
    zip.add("_rels/.rels", toMainPart);
    for (const auto& [name, content] : parts)
        zip.add(name, content);
    return zip.archive();
}

std::string packageOf(const std::string& body)
{
    return package({ { "word/document.xml", document(body) } });
}

std::string withoutLineEnd(std::string text)
{
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

TEST(OpenXml, ReadsTheTextOfABody)
{
    const std::string box = "<w:txbxContent>" + paragraph("box@x.org") + "</w:txbxContent>";
    const auto mark = [](const std::string& type) { return "<w:fldChar w:fldCharType='" + type + "'/>"; };
    const auto code = [](const std::string& text) { return "<w:instrText>" + text + "</w:instrText>"; };
    struct Row {
        const char* name;
        std::string body;
        const char* text;
    };
    for (const Row& row :
        {
            Row{ "runs join",
                "<w:p><w:r><w:t>a@</w:t></w:r><w:r><w:rPr><w:b/></w:rPr><w:t>x.org</w:t></w:r></w:p>",
                "a@x.org" },
            Row{ "paragraphs and cells stand apart",
                paragraph("a") + "<w:tbl><w:tr><w:tc>" + paragraph("b") + "</w:tc><w:tc>" + paragraph("c")
                    + "</w:tc></w:tr></w:tbl>",
                "a\nb\nc" },
            Row{ "tabs and breaks, but no tab stops",
                "<w:p><w:pPr><w:tabs><w:tab/></w:tabs></w:pPr><w:r><w:t>a</w:t><w:tab/><w:t>b</w:t><w:br/>"
                "<w:t>c</w:t><w:cr/><w:t>d</w:t><w:ptab/><w:t>e</w:t></w:r></w:p>",
                "a\tb\nc\nd\te" },
            Row{ "hyphens and symbols",
                "<w:p><w:r><w:t>a</w:t><w:noBreakHyphen/><w:t>b</w:t><w:softHyphen/><w:t>c\u00AD\u2011</w:t>"
                "<w:sym w:char='0040'/><w:sym w:char='F02A'/></w:r></w:p>",
                "a-bc-@\xEF\x80\xAA" },
            Row{ "line ends in a text", "<w:p><w:r><w:t>a\nb &amp; c\xF0\x9F\x98\x81</w:t></w:r></w:p>",
                "a b & c\xF0\x9F\x98\x81" },
            Row{ "a text box inside of a word",
                "<w:p><w:r><w:t>a@</w:t><w:pict>" + box + "</w:pict><w:t>x.org</w:t></w:r></w:p>",
                "a@x.org\nbox@x.org" },
            Row{ "a box in a box",
                "<w:p><w:txbxContent><w:p><w:r><w:t>1</w:t></w:r>" + box
                    + "<w:r><w:t>2</w:t></w:r></w:p></w:txbxContent></w:p>" + paragraph("b"),
                "\nbox@x.org\n\n12\n\nb" },
            Row{ "a fallback counts where no choice gave text",
                "<w:p><mc:AlternateContent><mc:Choice>" + box + "</mc:Choice><mc:Fallback>" + box
                    + "</mc:Fallback></mc:AlternateContent></w:p><w:p><mc:AlternateContent><mc:Choice>"
                      "<w:drawing/></mc:Choice><mc:Fallback><w:r><w:t>a</w:t></w:r></mc:Fallback>"
                      "</mc:AlternateContent></w:p>",
                "\nbox@x.org\n\na" },
            Row{ "deleted and moved away, with the end of a paragraph",
                "<w:p><w:pPr><w:rPr><w:del/></w:rPr></w:pPr><w:r><w:t>a</w:t></w:r><w:del><w:r><w:delText>b"
                "</w:delText><w:t>c</w:t></w:r></w:del><w:moveFrom><w:r><w:t>d</w:t></w:r></w:moveFrom></w:p>"
                "<w:p><w:ins><w:r><w:t>e</w:t></w:r></w:ins></w:p>",
                "ae" },
            Row{ "a deleted row and a deleted cell",
                "<w:tbl><w:tr><w:trPr><w:del/></w:trPr><w:tc>" + paragraph("a") + "</w:tc></w:tr><w:tr><w:tc>"
                    + paragraph("b") + "</w:tc><w:tc><w:tcPr><w:cellDel/></w:tcPr>" + paragraph("c")
                    + "</w:tc></w:tr></w:tbl>",
                "b" },
            Row{ "a link as a field",
                "<w:p><w:r><w:t>to </w:t>" + mark("begin") + code("HYPERLINK \"mail") + code("to:a%40x.org\"")
                    + mark("separate") + "<w:t>Ann</w:t>" + mark("end") + "<w:t>.</w:t></w:r></w:p>",
                "to Ann.\na@x.org" },
            Row{ "the tail of an address as a link",
                "<w:p><w:r><w:t>john.</w:t></w:r><w:fldSimple w:instr='HYPERLINK mailto:doe@x.org'><w:r><w:t>"
                "doe@x.org</w:t></w:r></w:fldSimple><w:r><w:t>, </w:t></w:r><w:fldSimple "
                "w:instr='HYPERLINK mailto:doe@x.org'/></w:p>",
                "john.doe@x.org, \n\n\n\n\n\n\n\n\n\n\ndoe@x.org" },
            Row{ "a field in a field's code",
                "<w:p><w:r>" + mark("begin") + code("IF ") + mark("begin") + code("REF x") + mark("separate")
                    + "<w:t>1</w:t>" + mark("end") + code(" \"a@x.org\"") + mark("separate") + "<w:t>b</w:t>"
                    + mark("end") + "</w:r></w:p>",
                "b\nIF 1 \"a@x.org\"" },
            Row{ "a field without an end, in a text box",
                "<w:p><w:txbxContent>" + mark("begin") + code("a@x.org")
                    + "</w:txbxContent><w:r><w:t>b</w:t></w:r></w:p>",
                "b\na@x.org" },
            Row{ "what is no run",
                "<w:p><w:fldSimple w:instr=' HYPERLINK mailto:a@x.org '/><m:oMath><m:r><m:t>m@x</m:t></m:r>"
                "</m:oMath><v:shape href='mailto:b@x.org'><v:textpath string='c@x.org'/></v:shape></w:p>",
                "m@x\na@x.org\nb@x.org\nc@x.org" },
        })
        EXPECT_EQ(withoutLineEnd(textOf(packageOf(row.body))), row.text) << row.name;
}

TEST(OpenXml, ReadsThePartsOfAPackage)
{
    const std::string chart = element("c:chartSpace",
        "<c:tx><c:rich><a:p><a:r><a:t>title</a:t></a:r></a:p></c:rich></c:tx><c:f>A1</c:f>"
        "<c:strCache><c:pt><c:v>a@x.org</c:v></c:pt><c:pt><c:v>b@x.org</c:v></c:pt></c:strCache>");
    const std::string embedded = packageOf(paragraph("inner@x.org"));
    const std::string glossary = element("w:glossaryDocument", paragraph("glossary"));
    const std::string strict
        = R"(<x:document xmlns:x="http://purl.oclc.org/ooxml/wordprocessingml/main"><x:p>)"
          "<x:r><x:t>a@x.org</x:t></x:r></x:p></x:document>";
    const std::string toLinks = relationship("l", "hyperlink", "mailto:a@x.org?subject=b&amp;c", true)
        + relationship("h", "hyperlink", "http://x.org/", true)
        + relationship("n", "hyperlink", "mailto:b@x.org", true);
    struct Row {
        const char* name;
        std::string bytes;
        const char* text;
    };
    for (const Row& row :
        {
            Row{ "strict form, foreign prefix", package({ { "word/document.xml", strict } }), "a@x.org" },
            Row{ "a main part of another name",
                ZipBuilder()
                    .add("_rels/.rels",
                        relationships(relationship("m", "officeDocument", "/Sub/../Word/body.xml")))
                    .add("word\\Body.xml", document(paragraph("a")), ZipBuilder::Method::Stored)
                    .archive(),
                "a" },
            Row{ "headers, notes and comments, each once, and no glossary",
                package({ { "word/document.xml", document("<w:p r:id='h'/>" + paragraph("a")) },
                    { "word/h.xml", element("w:hdr", paragraph("b")) },
                    { "word/f.xml",
                        element("w:footnotes", "<w:footnote>" + paragraph("c") + "</w:footnote>") },
                    { "word/c.xml", element("w:comments", "<w:comment>" + paragraph("d") + "</w:comment>") },
                    { "word/glossary/document.xml", glossary },
                    { "word/_rels/document.xml.rels",
                        relationships(relationship("h", "header", "h.xml")
                            + relationship("f", "footnotes", "f.xml") + relationship("c", "comments", "c.xml")
                            + relationship("i", "header", "/word/h.xml")
                            + relationship("g", "glossaryDocument", "glossary/document.xml")) } }),
                "\na\nb\nc\nd" },
            Row{ "links that text bears, each once",
                package({ { "word/document.xml",
                              document(
                                  "<w:p><w:hyperlink r:id='l'/><w:hyperlink r:id='l'/><w:hyperlink r:id='h'/>"
                                  "<w:del><w:hyperlink r:id='n'/></w:del></w:p>") },
                    { "word/_rels/document.xml.rels", relationships(toLinks) } }),
                "\na@x.org?subject=b&c" },
            Row{ "a chart, but not one that was deleted",
                package({ { "word/document.xml",
                              document("<w:p><c:chart r:id='c'/></w:p><w:del><c:chart r:id='d'/></w:del>") },
                    { "word/charts/c.xml", chart }, { "word/charts/d.xml", chart },
                    { "word/_rels/document.xml.rels",
                        relationships(relationship("c", "chart", "charts/c.xml")
                            + relationship("d", "chart", "charts/d.xml")) } }),
                "\ntitle\na@x.org\nb@x.org" },
            Row{ "embedded documents",
                package({ { "word/document.xml",
                              document("<w:altChunk r:id='1'/><w:altChunk r:id='2'/><w:altChunk r:id='3'/>"
                                       "<w:altChunk r:id='4'/>") },
                    { "word/1.docx", embedded }, { "word/2.rtf", "{\\rtf1 b@x.org}" },
                    { "word/3.html", "<html><body>c@x.org</body></html>" }, { "word/4.txt", "d@x.org" },
                    { "word/_rels/document.xml.rels",
                        relationships(relationship("1", "aFChunk", "1.docx")
                            + relationship("2", "aFChunk", "2.rtf") + relationship("3", "aFChunk", "3.html")
                            + relationship("4", "aFChunk", "4.txt")) } }),
                "inner@x.org\n\nb@x.org\nc@x.org\nd@x.org" },
            Row{ "lost relationships",
                ZipBuilder().add("word/header1.xml", element("w:hdr", paragraph("a"))).archive(), "a" },
            Row{ "another program's package", package({ { "word/document.xml", "<workbook/>" } }), "(nil)" },
            Row{ "an archive of other files", ZipBuilder().add("a.txt", "a@x.org").archive(), "(nil)" },
        })
        EXPECT_EQ(withoutLineEnd(textOf(row.bytes)), row.text) << row.name;
}

TEST(WordFile, ReadsDocumentsInDocumentsToAFourthOne)
{
    std::string bytes = packageOf(paragraph("6"));
    for (const std::string level : { "5", "4", "3", "2", "1" })
        bytes = package({ { "word/document.xml",
                              document(paragraph(level) + "<w:altChunk r:id='i'/><w:altChunk r:id='n'/>") },
            { "word/inner.docx", bytes }, { "word/next.rtf", "{\\rtf1 -" + level + "}" },
            { "word/_rels/document.xml.rels",
                relationships(relationship("i", "aFChunk", "inner.docx")
                    + relationship("n", "aFChunk", "next.rtf")) } });
    std::string text = textOf(bytes);
    std::erase(text, '\n');
    EXPECT_EQ(text, "1234-3-2-1");
}

TEST(WordFile, RecognisesTheKindByTheBytes)
{
    const std::string flat
        = R"(<?xml version="1.0"?><pkg:package xmlns:pkg="http://schemas.microsoft.com/office/2006/xmlPackage">)"
          R"(<pkg:part pkg:name="/word/document.xml"><pkg:xmlData>)"
        + document("<w:p><w:hyperlink r:id='l'><w:r><w:t>a</w:t></w:r></w:hyperlink></w:p>")
        + R"(</pkg:xmlData></pkg:part><pkg:part pkg:name="/word/styles.xml"><pkg:xmlData>)"
        + element("w:styles", paragraph("style")) + R"(</pkg:xmlData></pkg:part>)"
        + R"(<pkg:part pkg:name="/_rels/.rels"><pkg:xmlData>)" + toMainPart
        + R"(</pkg:xmlData></pkg:part><pkg:part pkg:name="/word/_rels/document.xml.rels"><pkg:xmlData>)"
        + relationships(relationship("l", "hyperlink", "mailto:b@x.org", true))
        + "</pkg:xmlData></pkg:part></pkg:package>";
    const std::string word2003
        = "<?xml version='1.0'?><w:wordDocument "
          "xmlns:w='http://schemas.microsoft.com/office/word/2003/wordml' "
          "xmlns:aml='http://schemas.microsoft.com/aml/2001/core'><w:body><w:p><w:r><w:t>a@</w:t>"
          "<w:footnote><w:p><w:r><w:t>note</w:t></w:r></w:p></w:footnote></w:r><aml:annotation aml:type="
          "'Word.Deletion'><w:r><w:t>b</w:t></w:r></aml:annotation><w:hlink w:dest='mailto:c@x.org'><w:r>"
          "<w:t>x.org</w:t></w:r></w:hlink></w:p></w:body></w:wordDocument>";
    const std::string compound = "\xD0\xCF\x11\xE0" + std::string(508, '\0');
    const std::string wordMark("\xEC\xA5\xC1\0\0\0\0\0\0\0\0", 11);
    struct Row {
        const char* name;
        std::string bytes;
        const char* text;
    };
    for (const Row& row : {
             Row{ "plain text", "a@x.org", "(nil)" },
             Row{ "any XML", "<?xml version='1.0'?><a>a@x.org</a>", "(nil)" },
             Row{ "RTF", "{\\rtf1 a@x.org}", "a@x.org" },
             Row{ "HTML", "\xEF\xBB\xBF <!DOCTYPE html><p><a href='mailto:b@x.org'>a</a></p>", "a\nb@x.org" },
             Row{ "the parts of a package in one file", flat, "a\nb@x.org" },
             Row{ "Word 2003 XML", word2003, "a@x.org\nnote\n\nc@x.org" },
             Row{ "a damaged .doc", compound + wordMark + std::string(100, '\0') + "a@x.org", "a@x.org" },
             Row{ "an encrypted one", compound + wordMark + std::string(100, '\1') + "a@x.org", "(nil)" },
             Row{ "a damaged file of another program", compound + "a@x.org", "(nil)" },
         })
        EXPECT_EQ(withoutLineEnd(textOf(row.bytes)), row.text) << row.name;
}

TEST(WordFile, ReadsTheRestOfATruncatedDocument)
{
    const std::string letter = TempFolder::contentOf(QUILVANE_SAMPLES "/letter.docx");
    EXPECT_NE(textOf(letter.substr(0, letter.size() * 9 / 10)).find("body@example.com"), std::string::npos);
    const std::string whole = package(
        { { "word/document.xml", document(paragraph("a@x.org") + repeated(paragraph("b"), 100'000)) } });
    EXPECT_TRUE(textOf(std::string_view(whole).substr(0, whole.size() / 2)).starts_with("a@x.org\nb\n"));
}

TEST(OpenXml, ContinuesAfterDamage)
{
    struct Row {
        const char* name;
        std::string body;
        const char* text;
    };
    for (const Row& row : {
             Row{ "a tag that is none", "<w:p><w:r><w:rPr><w:i/ ></w:rPr><w:t>a</w:t></w:r></w:p>", "a" },
             Row{ "a tag in a tag", "<w:p><w:r <w:t>a</w:t></w:r></w:p>" + paragraph("b"), "a\nb" },
             Row{ "a value without a quote", "<w:p w:a='1 w:b=2><w:r><w:t>a</w:t></w:r></w:p>", "a" },
             Row{ "end tags too early and too many", "<w:p><w:r><w:t>a</w:p></w:t></x>" + paragraph("b"),
                 "a\nb" },
             Row{ "what refers to nothing", paragraph("a&nbsp;&lt;&none;&#0;&"), "a <&none;&#0;&" },
             Row{ "other markup", "<?a <w:t>?><!-- <w:t> -->" + paragraph("<![CDATA[<a&amp;>]]>"),
                 "<a&amp;>" },
             Row{ "an end in a tag", paragraph("a") + "<w:p a='", "a" },
             Row{ "an end in a comment", paragraph("a") + "<!-- ", "a" },
         })
        EXPECT_EQ(withoutLineEnd(textOf(packageOf(row.body))), row.text) << row.name;
    const std::string rootless = document(paragraph("a")).substr(3);
    EXPECT_EQ(withoutLineEnd(textOf(package({ { "word/document.xml", rootless } }))), "a");
    const std::string cyrillic
        = R"(<?xml version="1.0" encoding="windows-1251"?>)" + document(paragraph("\xCF"));
    EXPECT_EQ(withoutLineEnd(textOf(cyrillic)), "П");
}

/// Each of them costs a naive reader minutes, gigabytes or its stack.
TEST(WordFile, HostileDocumentsCostLittle)
{
    const std::string bomb = "<!DOCTYPE w [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '" + repeated("&a;", 10)
        + "'><!ENTITY c SYSTEM 'file:///etc/passwd'>]>";
    const auto unclosed = [](const std::string& head, const std::string& unit, std::size_t megabytes) {
        std::string xml = document(paragraph("a@x.org") + head);
        xml.resize(xml.find("</w:body>"));
        return ZipBuilder()
            .add("_rels/.rels", toMainPart)
            .addPacked("word/document.xml",
                ZipBuilder::deflated(xml, repeated(unit, megabyte / unit.size()), megabytes),
                ZipBuilder::Method::Deflated)
            .archive();
    };
    const auto numbered = [](const std::string& before, const std::string& after, int count) {
        std::string result;
        for (int i = 0; i < count; ++i)
            result += before + std::to_string(i) + after;
        return result;
    };
    const auto many = [](int count, const std::string& folder) {
        ZipBuilder zip;
        for (int i = 0; i < count; ++i)
            zip.add(folder + std::to_string(i) + "/x.xml", "", ZipBuilder::Method::Stored);
        return zip.add("word/document.xml", document(paragraph("a@x.org"))).archive();
    };
    ZipBuilder overlapping;
    overlapping.add("word/document.xml", document(paragraph("a@x.org") + repeated("<w:p/>", megabyte)));
    for (int i = 0; i < 2000; ++i)
        overlapping.list(
            "word/header" + std::to_string(i) + ".xml", 8 * megabyte, ZipBuilder::Method::Deflated);

    const auto oneHeader = [] {
        ZipBuilder zip;
        zip.add("word/document.xml", document(paragraph("a@x.org")));
        zip.add(std::string(65'000, 'a'), "", ZipBuilder::Method::Stored);
        for (int i = 0; i < 400'000; ++i)
            zip.list("", 0, ZipBuilder::Method::Stored);
        return zip.archive();
    };
    const auto longFolder = [&] {
        const std::string folder = "word/" + std::string(200, 'f') + "/";
        ZipBuilder zip;
        std::string parts;
        for (int i = 0; i < 200; ++i) {
            const std::string name = std::to_string(i) + ".xml";
            parts += relationship("m" + name, "officeDocument", folder + name);
            zip.add(folder + name, document(paragraph("a@x.org")));
            zip.add(folder + "_rels/" + name + ".rels",
                relationships(numbered("<Relationship Type='/header' Id='h", "' Target='h'/>", 4000)));
        }
        return zip.add("_rels/.rels", relationships(parts)).archive();
    };

    struct Row {
        const char* name;
        std::function<std::string()> make;
    };
    for (const Row& row :
        {
            Row{ "two gigabytes in two megabytes",
                [&] { return unclosed("<w:p><w:r><w:t>", "a b c d ", 2048); } },
            Row{ "elements in elements", [&] { return unclosed("", "<w:p>", 30); } },
            Row{ "a tag of many attributes",
                [&] { return unclosed("<w:p" + numbered(" a", "=''", 2'000'000), " ", 1); } },
            Row{ "a tag of many namespaces",
                [&] { return unclosed("<w:p" + numbered(" xmlns:a", "=''", 1'000'000), " ", 1); } },
            Row{ "namespaces in namespaces",
                [&] { return unclosed(numbered("<w:p xmlns:a", "='b'>", 9000), "<w:p/>", 30); } },
            Row{ "an attribute without an end", [&] { return unclosed("<w:p a='", "a", 60); } },
            Row{ "an entity without an end", [&] { return unclosed("", "&", 20); } },
            Row{ "fields in fields", [&] { return unclosed("", "<w:fldChar w:fldCharType='begin'/>", 36); } },
            Row{ "300,000 files", [&] { return many(300'000, "word/a"); } },
            Row{ "overlapping files", [&] { return overlapping.archive(); } },
            Row{ "comments in comments", [&] { return unclosed("", "<!--<", 30); } },
            Row{ "end tags of nothing", [&] { return unclosed(repeated("<x>", 9000), "</y>", 30); } },
            Row{ "tags in tags", [&] { return unclosed("", "<w:p a='<w:p b=\"", 30); } },
            Row{ "names for one file", [&] { return oneHeader(); } },
            Row{ "relationships below a long folder", [&] { return longFolder(); } },
        }) {
        const std::string text = textOf(row.make());
        EXPECT_TRUE(text.starts_with("a@x.org\n")) << row.name << ": " << text.substr(0, 100);
        EXPECT_LE(text.size(), 128 * megabyte) << row.name;
    }
    const std::string withEntities
        = package({ { "word/document.xml", bomb + document(paragraph("&c;&b;")) } });
    EXPECT_EQ(textOf(withEntities), "(nil)");
}

} // namespace

} // namespace quilvane
