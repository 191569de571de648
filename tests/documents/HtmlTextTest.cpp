// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/html/htmlText.h"
#include "documents/documentText.h"
#include "documents/expectTexts.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quilvane {

TEST(HtmlTextTest, textsOfPages)
{
    expectTexts([](std::string_view html) { return std::optional(htmlBodyText(html)); },
        {
            { "empty", "", "" },
            { "no markup", "just x@y.org", "just x@y.org" },
            { "body only", "<html><head><title>t</title></head><body>b</body></html>", "b" },
            { "elements inside of a line join", "<p>x<b>@</b><span>y</span>.org</p>", "x@y.org" },
            { "blocks, breaks and items part", "<div>a<p>b<br>c</div>d<ul><li>e<li>f</ul>",
                "a\nb\nc\nd\ne\nf" },
            { "cells part", "<table><tr><td>a</td><td>b</td></tr><tr><th>c</table>", "a\tb\nc" },
            { "white space joins", "<p> a \r\n\t b  <i> c</i> </p>\n<p>  </p>d", "a b c\nd" },
            { "preformatted", "<pre>a  b\n c</pre>", "a  b\n c" },
            { "scripts, styles and templates",
                "<script>a</script><style>b</style><template><p>c</p></template>d", "d" },
            { "comments and attributes are not seen", "<!-- a --><a href='http:x@y.org' title=b>c</a>", "c" },
            { "entities", "x&#64y&#x2e;or&commat;g &amp;&nbsp;&#x20AC;&bogus;",
                "x@y.or@g & \xE2\x82\xAC&bogus;" },
            { "what nobody closed", "<div><b>a<table><td>b", "a\nb" },
            { "UTF-8 without a name", "<p>\xC3\xA4", "\xC3\xA4" },
            { "western bytes without a name", "<p>\xE4\x80", "\xC3\xA4\xE2\x82\xAC" },
            { "named in the head", "<meta charset=\"koi8-r\"><p>\xC1", "\xD0\xB0" },
            { "named in the old manner",
                "<META http-equiv=Content-Type content='text/html; Charset = windows-1251'>\xE0",
                "\xD0\xB0" },
            { "UTF-16", std::string("\xFF\xFE<\0p\0>\0\xE4\0", 10), "\xC3\xA4" },
            { "a name that nobody knows", "<meta charset=martian><p>\xC3\xA4", "\xC3\xA4" },
            { "bytes that are no characters", "<meta charset=utf-8>a\377b", "a\uFFFDb" },
            { "as deep as no reader would like",
                "<b>a" + repeated("<b>", 100'000) + "b" + repeated("</i>", 100'000), "ab" },
            { "attributes of any form", "<p a=\"<i>\" b='>' c=/d =e f>x</p g='>'>y", "x\ny" },
            { "no markup after all", "a<1 <>< </1>b<!x>c<!-->d<!-- -- >-->e", "a<1 <>< bcde" },
            { "UTF-16 without a mark", std::string("<\0p\0>\0\xE4\0", 8), "\xC3\xA4" },
            { "hyphens, and what has no width", "a&shy;b\u2011c&zwnj;d&#x2010;e", "ab-cd-e" },
            { "a letter's name", "&Auml;&yuml;&bogus;", "\u00C4\u00FF&bogus;" },
            { "cut off in a tag", "a<b c='>", "a" },
            { "cut off in a script", "a<script>b</scrip", "a" },
            { "a mail link",
                "<p>to <a class=c HREF='MAILTO:x%40y.org?subject=%4'>us</a><p>end<a href='http:'>",
                "to us\nend\nx@y.org?subject=%4" },
            { "the tail of an address as a link",
                "john.<a href='mailto:doe@y.org?cc=x'>doe@y.org</a>. <a href='mailto:doe@y.org'>he</a>",
                "john.doe@y.org. he\ndoe@y.org" },
        });
    EXPECT_EQ(htmlBodyText("<meta charset=koi8-r><p>\xE0", "windows-1251"), "\xD0\xB0")
        << "the part's name goes first";
    EXPECT_EQ(htmlBodyText("\xEF\xBB\xBF<meta charset=koi8-r>\xC3\xA4", "koi8-r"), "\xC3\xA4")
        << "a mark goes before both";
}

TEST(HtmlTextTest, recognisesPagesByTheirFirstTag)
{
    const std::string comment = "<!-- " + std::string(10'000, 'x') + " -->";
    const std::string wide("\xFF\xFE<\0p\0>\0", 8);
    for (const std::string& page : std::vector<std::string>{ "<table><tr>", " \n<P class=a>", comment + "<b>",
             "<!doctype html>", "<?xml version='1.0'?><o:x/><html>", wide })
        EXPECT_TRUE(looksLikeHtml(page)) << page.substr(0, 40);
    for (const std::string& other : std::vector<std::string>{
             "<?xml version='1.0'?><a/>", "<a@x.org>", "a <p>", comment, "<project><p/></project>" })
        EXPECT_FALSE(looksLikeHtml(other)) << other.substr(0, 40);
}

TEST(HtmlTextTest, pagesInMessages)
{
    const std::string head
        = "From: x\r\nMIME-Version: 1.0\r\nContent-Type: multipart/related;\r\n\tboundary=\"-b\"\r\n\r\n"
          "no part\r\n---b\r\n";
    const std::string quoted = "Content-Type: text/html; charset=windows-1251\r\nContent-Transfer-Encoding: "
                               "Quoted-Printable\r\n\r\n<p>a@=\r\nx=2Eorg =CF=zz=\r\n---b";
    expectTexts(documentText,
        {
            { "quoted-printable", head + quoted + "--\r\n", "a@x.org \u041F=zz" },
            { "base64 in parts in parts",
                head
                    + "Content-Type: multipart/alternative; boundary=c\n\n--c\nContent-Type: "
                      "text/plain\n\nno\n--c\n"
                      "content-type: TEXT/HTML\ncontent-transfer-encoding: "
                      "base64\n\nPGI+\nYUB4Lm9yZw==\n--c--\n---b--",
                "a@x.org" },
            { "two pages, the last one cut off", head + quoted + "\r\nContent-Type: text/html\r\n\r\n<p>b",
                "a@x.org \u041F=zz\nb" },
            { "one page alone", "\r\nSubject: s\r\nContent-Type: text/html\r\n\r\n<p>a", "a" },
            { "no page", "MIME-Version: 1.0\n\n<p>a", "(nil)" },
            { "no header", "Dear all: <p>\nContent-Type: text/html\n\n<p>a", "(nil)" },
        });
}

} // namespace quilvane
