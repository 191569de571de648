// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/documentText.h"
#include "documents/expectTexts.h"
#include "support/TempFolder.h"
#include "support/ZipBuilder.h"

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace quilvane {

namespace {

constexpr std::size_t megabyte = std::size_t(1) << 20;

using Parts = std::initializer_list<std::pair<std::string, std::string>>;

/// An element with declarations of the namespaces that parts use.
std::string element(const std::string& name, const std::string& content)
{
    return "<" + name
        + R"( xmlns="http://schemas.openxmlformats.org/wordprocessingml/2006/main")"
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
    return element("document", "<body>" + body + "</body>");
}

std::string paragraph(const std::string& text)
{
    return "<p><r><t>" + text + "</t></r></p>";
}

struct Relationship {
    std::string id;
    std::string type;
    std::string target;
};

std::string relationships(const std::vector<Relationship>& list)
{
    std::string xml;
    for (const auto& [id, type, target] : list) {
        xml += "<Relationship Id='" + id + "' Type='http://any.example/" + type + "' Target='" + target + "'";
        xml += type == "hyperlink" ? " TargetMode='External'/>" : "/>";
    }
    return "<Relationships>" + xml + "</Relationships>";
}

const std::string toMainPart = relationships({ { "m", "officeDocument", "word/document.xml" } });

std::string package(
    const std::string& mainPart, const std::vector<Relationship>& related = {}, Parts parts = {})
{
    ZipBuilder zip;
    zip.add("_rels/.rels", toMainPart).add("word/document.xml", mainPart);
    for (const auto& [name, content] : parts)
        zip.add("word/" + name, content);
    return zip.add("word/_rels/document.xml.rels", relationships(related)).archive();
}

std::optional<std::string> textOfBody(std::string_view body)
{
    return documentText(package(document(std::string(body))));
}

TEST(OpenXml, ReadsTheTextOfABody)
{
    const std::string box = "<txbxContent>" + paragraph("box@x.org") + "</txbxContent>";
    const auto mark = [](const std::string& type) { return "<fldChar fldCharType='" + type + "'/>"; };
    const auto code = [](const std::string& text) { return "<instrText>" + text + "</instrText>"; };
    expectTexts(textOfBody,
        {
            { "tabs and breaks, but no tab stops",
                "<p><pPr><tabs><tab/></tabs></pPr><r><t>a</t><tab/><t>b</t><br/><t>c</t><cr/><t>d</t><ptab/>"
                "<t>e</t></r></p>",
                "a\tb\nc\nd\te" },
            { "hyphens and symbols",
                "<p><r><t>a</t><noBreakHyphen/><t>b</t><softHyphen/><t>c\u00AD\u2011</t><sym char='0040'/>"
                "<sym char='F02A'/></r></p>",
                "a-bc-@\xEF\x80\xAA" },
            { "line ends in a text", paragraph("a\nb &amp; c\xF0\x9F\x98\x81"), "a b & c\xF0\x9F\x98\x81" },
            { "a text box inside of a word", "<p><r><t>a@</t><pict>" + box + "</pict><t>x.org</t></r></p>",
                "a@x.org\nbox@x.org" },
            { "a box in a box",
                "<p><txbxContent><p><r><t>1</t></r>" + box + "<r><t>2</t></r></p></txbxContent></p>"
                    + paragraph("b"),
                "\nbox@x.org\n\n12\n\nb" },
            { "a fallback counts where no choice gave text",
                "<p><mc:AlternateContent><mc:Choice>" + box + "</mc:Choice><mc:Fallback>" + box
                    + "</mc:Fallback></mc:AlternateContent></p><p><mc:AlternateContent><mc:Choice><drawing/>"
                      "</mc:Choice><mc:Fallback><r><t>a</t></r></mc:Fallback></mc:AlternateContent></p>",
                "\nbox@x.org\n\na" },
            { "deleted and moved away, with the end of a paragraph",
                "<p><pPr><rPr><del/></rPr></pPr><r><t>a</t></r><del><r><delText>b</delText><t>c</t></r></del>"
                "<moveFrom><r><t>d</t></r></moveFrom></p><p><ins><r><t>e</t></r></ins></p>",
                "ae" },
            { "a deleted row and a deleted cell",
                "<tbl><tr><trPr><del/></trPr><tc>" + paragraph("a") + "</tc></tr><tr><tc>" + paragraph("b")
                    + "</tc><tc><tcPr><cellDel/></tcPr>" + paragraph("c") + "</tc></tr></tbl>",
                "b" },
            { "a link as a field",
                "<p><r><t>to </t>" + mark("begin") + code("HYPERLINK \"mail") + code("to:a%40x.org\"")
                    + mark("separate") + "<t>Ann</t>" + mark("end") + "<t>.</t></r></p>",
                "to Ann.\na@x.org" },
            { "the tail of an address as a link",
                "<p><r><t>john.</t></r><fldSimple instr='HYPERLINK mailto:doe@x.org'><r><t>doe@x.org</t></r>"
                "</fldSimple><r><t>, </t></r><fldSimple instr='HYPERLINK mailto:doe@x.org'/></p>",
                "john.doe@x.org, \n\n\n\n\n\n\n\n\n\n\ndoe@x.org" },
            { "a field in a field's code",
                "<p><r>" + mark("begin") + code("IF ") + mark("begin") + code("REF x") + mark("separate")
                    + "<t>1</t>" + mark("end") + code(" \"a@x.org\"") + mark("separate") + "<t>b</t>"
                    + mark("end") + "</r></p>",
                "b\nIF 1 \"a@x.org\"" },
            { "a field without an end, in a text box",
                "<p><txbxContent>" + mark("begin") + code("a@x.org") + "</txbxContent><r><t>b</t></r></p>",
                "b\na@x.org" },
            { "what is no run",
                "<p><fldSimple instr=' HYPERLINK mailto:a@x.org "
                "'/><m:oMath><m:r><m:t>m@x</m:t></m:r></m:oMath>"
                "<v:shape href='mailto:b@x.org'><v:textpath string='c@x.org'/></v:shape></p>",
                "m@x\na@x.org\nb@x.org\nc@x.org" },
        });
}

TEST(OpenXml, ReadsThePartsOfAPackage)
{
    const std::string chart = element("c:chartSpace",
        "<c:tx><c:rich><a:p><a:r><a:t>title</a:t></a:r></a:p></c:rich></c:tx><c:f>A1</c:f>"
        "<c:strCache><c:pt><c:v>a@x.org</c:v></c:pt><c:pt><c:v>b@x.org</c:v></c:pt></c:strCache>");
    const std::string strict
        = R"(<x:document xmlns:x="http://purl.oclc.org/ooxml/wordprocessingml/main"><x:p>)"
          "<x:r><x:t>a@x.org</x:t></x:r></x:p></x:document>";
    expectTexts(documentText,
        {
            { "strict form, with a prefix", package(strict), "a@x.org" },
            { "a main part of another name",
                ZipBuilder()
                    .add("_rels/.rels", relationships({ { "m", "officeDocument", "/Sub/../Word/body.xml" } }))
                    .add("word\\Body.xml", document(paragraph("a")), ZipBuilder::Method::Stored)
                    .archive(),
                "a" },
            { "headers, notes and comments, each once, and no glossary",
                package(document("<p r:id='h'/>" + paragraph("a")),
                    { { "h", "header", "h.xml" }, { "f", "footnotes", "/word/f.xml" },
                        { "c", "comments", "c.xml" }, { "i", "header", "/word/h.xml" },
                        { "g", "glossaryDocument", "g.xml" } },
                    { { "h.xml", element("hdr", paragraph("b")) },
                        { "f.xml", element("footnotes", "<footnote>" + paragraph("c") + "</footnote>") },
                        { "c.xml", element("comments", "<comment>" + paragraph("d") + "</comment>") },
                        { "g.xml", element("glossaryDocument", paragraph("glossary")) } }),
                "\na\nb\nc\nd" },
            { "links that text bears, each once",
                package(document("<p><hyperlink r:id='l'/><hyperlink r:id='l'/><hyperlink r:id='h'/><del>"
                                 "<hyperlink r:id='n'/></del></p>"),
                    { { "l", "hyperlink", "mailto:a@x.org?subject=b&amp;c" },
                        { "h", "hyperlink", "http://x.org/" }, { "n", "hyperlink", "mailto:b@x.org" } }),
                "\na@x.org?subject=b&c" },
            { "a chart, but not one that was deleted",
                package(document("<p><c:chart r:id='c'/></p><del><c:chart r:id='d'/></del>"),
                    { { "c", "chart", "charts/c.xml" }, { "d", "chart", "charts/d.xml" } },
                    { { "charts/c.xml", chart }, { "charts/d.xml", chart } }),
                "\ntitle\na@x.org\nb@x.org" },
            { "embedded documents",
                package(document("<altChunk r:id='1'/><altChunk r:id='2'/><altChunk r:id='3'/>"
                                 "<altChunk r:id='4'/>"),
                    { { "1", "aFChunk", "1.docx" }, { "2", "aFChunk", "2.rtf" }, { "3", "aFChunk", "3.html" },
                        { "4", "aFChunk", "4.txt" } },
                    { { "1.docx", package(document(paragraph("inner@x.org"))) },
                        { "2.rtf", "{\\rtf1 b@x.org}" }, { "3.html", "<html><body>c@x.org</body></html>" },
                        { "4.txt", "d@x.org" } }),
                "inner@x.org\n\nb@x.org\nc@x.org\nd@x.org" },
            { "lost relationships, and no glossary",
                ZipBuilder()
                    .add("word/header1.xml", element("hdr", paragraph("a")))
                    .add("word/glossary.xml", element("glossaryDocument", paragraph("glossary")))
                    .archive(),
                "a" },
            { "another program's package", package("<workbook/>"), "(nil)" },
            { "an archive of other files", ZipBuilder().add("a.txt", "a@x.org").archive(), "(nil)" },
        });
}

TEST(OpenXml, ContinuesAfterDamage)
{
    expectTexts(textOfBody,
        {
            { "a tag that is none", "<p><r><rPr><i/ ></rPr><t>a</t></r></p>", "a" },
            { "a tag in a tag", "<p><r <t>a</t></r></p>" + paragraph("b"), "a\nb" },
            { "a value without a quote", "<p a='1 b=2><r><t>a</t></r></p>", "a" },
            { "end tags too early and too many", "<p><r><t>a</p></t></x>" + paragraph("b"), "a\nb" },
            { "what refers to nothing", paragraph("a&nbsp;&lt;&none;&#0;&"), "a <&none;&#0;&" },
            { "other markup", "<?a <t>?><!-- <t> -->" + paragraph("<![CDATA[<a&amp;>]]>"), "<a&amp;>" },
            { "an end in a tag", paragraph("a") + "<p a='", "a" },
            { "an end in a comment", paragraph("a") + "<!-- ", "a" },
        });
    expectTexts(documentText,
        {
            { "the first tag cut off", package("document><w:body><w:p><w:r><w:t>a</w:t></w:r></w:p>"), "a" },
            { "in another character set",
                R"(<?xml version="1.0" encoding="windows-1251"?>)" + document(paragraph("\xCF")), "П" },
        });
}

TEST(WordFile, ReadsDocumentsInDocumentsToAFourthOne)
{
    std::string bytes = package(document(paragraph("6")));
    for (const std::string level : { "5", "4", "3", "2", "1" })
        bytes = package(document(paragraph(level) + "<altChunk r:id='i'/><altChunk r:id='n'/>"),
            { { "i", "aFChunk", "inner.docx" }, { "n", "aFChunk", "next.rtf" } },
            { { "inner.docx", bytes }, { "next.rtf", "{\\rtf1 -" + level + "}" } });
    std::string text = documentText(bytes).value_or("(nil)");
    std::erase(text, '\n');
    EXPECT_EQ(text, "1234-3-2-1");
}

TEST(WordFile, RecognisesTheKindByTheBytes)
{
    const auto part = [](const std::string& name, const std::string& content) {
        return "<pkg:part pkg:name='" + name + "'><pkg:xmlData>" + content + "</pkg:xmlData></pkg:part>";
    };
    const std::string flat
        = R"(<?xml version="1.0"?><pkg:package xmlns:pkg="http://schemas.microsoft.com/office/2006/xmlPackage">)"
        + part("/word/document.xml", document("<p><hyperlink r:id='l'><r><t>a</t></r></hyperlink></p>"))
        + part("/word/styles.xml", element("styles", paragraph("style"))) + part("/_rels/.rels", toMainPart)
        + part("/word/_rels/document.xml.rels", relationships({ { "l", "hyperlink", "mailto:b@x.org" } }))
        + "</pkg:package>";
    const std::string word2003
        = "<?xml version='1.0'?><w:wordDocument "
          "xmlns:w='http://schemas.microsoft.com/office/word/2003/wordml' "
          "xmlns:aml='http://schemas.microsoft.com/aml/2001/core'><w:body><w:p><w:r><w:t>a@</w:t>"
          "<w:footnote><w:p><w:r><w:t>note</w:t></w:r></w:p></w:footnote></w:r><aml:annotation aml:type="
          "'Word.Deletion'><w:r><w:t>b</w:t></w:r></aml:annotation><w:hlink w:dest='mailto:c@x.org'><w:r>"
          "<w:t>x.org</w:t></w:r></w:hlink></w:p></w:body></w:wordDocument>";
    const std::string compound = "\xD0\xCF\x11\xE0" + std::string(508, '\0');
    const std::string wordMark("\xEC\xA5\xC1\0\0\0\0\0\0\0\0", 11);
    expectTexts(documentText,
        {
            { "any XML", "<?xml version='1.0'?><a>a@x.org</a>", "(nil)" },
            { "HTML", "\xEF\xBB\xBF <!DOCTYPE html><p><a href='mailto:b@x.org'>a</a></p>", "a\nb@x.org" },
            { "the parts of a package in one file", flat, "a\nb@x.org" },
            { "Word 2003 XML", word2003, "a@x.org\nnote\n\nc@x.org" },
            { "a damaged .doc", compound + wordMark + std::string(100, '\0') + "a@x.org", "a@x.org" },
            { "an encrypted one", compound + wordMark + std::string(100, '\1') + "a@x.org", "(nil)" },
            { "a damaged file of another program", compound + "a@x.org", "(nil)" },
        });
    ReadingBudget budget;
    EXPECT_TRUE(documentText(flat, budget));
    EXPECT_LT(budget.bytes, ReadingBudget().bytes - 3 * ReadingBudget::costOfPart) << "as in an archive";
}

TEST(WordFile, ReadsTheRestOfATruncatedDocument)
{
    const std::string letter = TempFolder::contentOf(QUILVANE_SAMPLES "/letter.docx");
    const auto text = documentText(letter.substr(0, letter.size() * 9 / 10));
    EXPECT_NE(text.value_or("").find("body@example.com"), std::string::npos);
    const std::string whole = package(document(paragraph("a@x.org") + repeated(paragraph("b"), 100'000)));
    EXPECT_TRUE(documentText(whole.substr(0, whole.size() / 2)).value_or("").starts_with("a@x.org\nb\n"));
}

/// Each of them costs a naive reader minutes, gigabytes or its stack.
TEST(WordFile, HostileDocumentsCostLittle)
{
    using enum ZipBuilder::Method;
    const std::string honest = document(paragraph("a@x.org"));
    const auto unclosed = [](const std::string& head, const std::string& unit, std::size_t megabytes) {
        std::string xml = document(paragraph("a@x.org") + head);
        xml.resize(xml.find("</body>"));
        return ZipBuilder()
            .add("_rels/.rels", toMainPart)
            .addPacked("word/document.xml",
                ZipBuilder::deflated(xml, repeated(unit, megabyte / unit.size()), megabytes), Deflated)
            .archive();
    };
    const auto numbered = [](const std::string& before, const std::string& after, int count) {
        std::string result;
        for (int i = 0; i < count; ++i)
            result += before + std::to_string(i) + after;
        return result;
    };
    const auto manyFiles = [&] {
        ZipBuilder zip;
        for (int i = 0; i < 300'000; ++i)
            zip.add("word/a" + std::to_string(i) + "/x.xml", "", Stored);
        return zip.add("word/document.xml", honest).archive();
    };
    const auto overlapping = [] {
        ZipBuilder zip;
        zip.add("word/document.xml", document(paragraph("a@x.org") + repeated("<p/>", megabyte)));
        for (int i = 0; i < 2000; ++i)
            zip.list("word/header" + std::to_string(i) + ".xml", 8 * megabyte, Deflated);
        return zip.archive();
    };
    const auto oneHeader = [&] {
        ZipBuilder zip;
        zip.add("word/document.xml", honest).add(std::string(65'000, 'a'), "", Stored);
        for (int i = 0; i < 400'000; ++i)
            zip.list("", 0, Stored);
        return zip.archive();
    };
    const auto longFolder = [&] {
        const std::string folder = "word/" + std::string(200, 'f') + "/";
        const std::string headers = numbered("<Relationship Type='/header' Id='h", "' Target='h'/>", 4000);
        ZipBuilder zip;
        std::vector<Relationship> parts;
        for (int i = 0; i < 200; ++i) {
            const std::string name = std::to_string(i) + ".xml";
            parts.push_back({ "m" + name, "officeDocument", folder + name });
            zip.add(folder + name, honest);
            zip.add(folder + "_rels/" + name + ".rels", "<Relationships>" + headers + "</Relationships>");
        }
        return zip.add("_rels/.rels", relationships(parts)).archive();
    };
    const std::pair<const char*, std::function<std::string()>> cases[] = {
        { "two gigabytes in two megabytes", [&] { return unclosed("<p><r><t>", "a b c d ", 2048); } },
        { "elements in elements", [&] { return unclosed("", "<p>", 30); } },
        { "a tag of many attributes",
            [&] { return unclosed("<p" + numbered(" a", "=''", 2'000'000), " ", 1); } },
        { "a tag of many namespaces",
            [&] { return unclosed("<p" + numbered(" xmlns:a", "=''", 1'000'000), " ", 1); } },
        { "namespaces in namespaces",
            [&] { return unclosed(numbered("<p xmlns:a", "='b'>", 9000), "<p/>", 30); } },
        { "an attribute without an end", [&] { return unclosed("<p a='", "a", 60); } },
        { "an entity without an end", [&] { return unclosed("", "&", 20); } },
        { "fields in fields", [&] { return unclosed("", "<fldChar fldCharType='begin'/>", 36); } },
        { "300,000 files", manyFiles },
        { "overlapping files", overlapping },
        { "comments in comments", [&] { return unclosed("", "<!--<", 30); } },
        { "end tags of nothing", [&] { return unclosed(repeated("<x>", 9000), "</y>", 30); } },
        { "tags in tags", [&] { return unclosed("", "<p a='<p b=\"", 30); } },
        { "names for one file", oneHeader },
        { "relationships below a long folder", longFolder },
    };
    for (const auto& [name, make] : cases) {
        const std::string text = documentText(make()).value_or("(nil)");
        EXPECT_TRUE(text.starts_with("a@x.org\n")) << name << ": " << text.substr(0, 100);
        EXPECT_LE(text.size(), 128 * megabyte) << name;
    }
    const std::string bomb = "<!DOCTYPE w [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '" + repeated("&a;", 10)
        + "'><!ENTITY c SYSTEM 'file:///etc/passwd'>]>";
    EXPECT_FALSE(documentText(package(bomb + document(paragraph("&c;&b;")))));
}

} // namespace

} // namespace quilvane
