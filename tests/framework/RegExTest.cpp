// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/regex/RegEx.h"
#include "framework/controls/RowStore.h"
#include "framework/exceptions.h"
#include "framework/strings.h"
#include "support/messageOf.h"

#include <random>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace quilvane {

namespace {

using Texts = std::vector<std::string>;

Texts allMatches(RegEx& expression, std::string_view text)
{
    Texts found;
    for (auto match = expression.Search(text); match; match = expression.Search()) {
        found.push_back(match->SubExpressionString(0));
        if (found.size() > text.size() + 1)
            throw std::runtime_error("the search does not end");
    }
    return found;
}

/// The message of the exception that a search throws.
template <typename Exception>
std::string failure(const std::string& pattern, std::string_view text)
{
    RegEx expression;
    expression.setSearchPattern(pattern);
    return messageOf<Exception>([&] { expression.matches(text); });
}

const std::string longText(5000, '-');

TEST(RegEx, FindsAllMatchesInOrder)
{
    struct Case {
        const char* name;
        std::string pattern, text;
        Texts expected;
    };
    for (const auto& [name, pattern, text, expected] : {
             Case{ "ignores case", "\\.PDF", "a.pdf b.Pdf", { ".pdf", ".Pdf" } },
             { "of ASCII only", "\xC3\xA4", "\xC3\x84 \xC3\xA4", { "\xC3\xA4" } },
             { "high bytes are no word characters", "\\bb\\b", "\374b\374", { "b" } },
             { "any bytes may be searched", "x.y", std::string("\xFF\x00x\x80y", 5), { "x\x80y" } },
             { "a dot stops at line ends", "a.*", "ab\ncd\rae\r\naf", { "ab", "ae", "af" } },
             { "an empty pattern matches everywhere", "", "ab", { "", "", "" } },
             { "empty and other matches", "b*", "abba", { "", "bb", "", "" } },
             { "matches that empty themselves", "a\\K", "aaa", { "", "", "" } },
             { "looks back at the previous match", "(?<=a)a", "aaa", { "a", "a" } },
             { "no match", "x", "abc", {} },
             { "beyond the first stretch", "x|^-|.$", longText + "x" + longText + "y", { "-", "x", "y" } },
             { "across stretches", "-+", longText, { longText } },
         }) {
        RegEx expression;
        expression.setSearchPattern(pattern);
        EXPECT_EQ(allMatches(expression, text), expected) << name;
        EXPECT_EQ(expression.matches(text), !expected.empty()) << name;
        EXPECT_FALSE(expression.Search()) << name << ": a search that has ended must stay so";
    }
}

TEST(RegEx, MissesNoPlaceOfALongText)
{
    RegEx expression;
    expression.setSearchPattern("^|(?=x)");
    for (std::size_t place = 1; place < 5000; ++place)
        ASSERT_EQ(allMatches(expression, longText.substr(0, place) + "x").size(), 2u) << place;
}

TEST(RegEx, FindsAMereTextLikeTheEngine)
{
    std::minstd_rand random(1);
    RowStore rows;
    std::string whole;
    for (int row = 0; row < 10'000; ++row) {
        std::string text;
        for (auto left = random() % 50; left > 0; --left)
            text += "aAbB9@.\xC4\xE4"[random() % 9];
        rows.append(text);
        whole += text + '\n';
    }
    for (const std::string pattern : { "a", "9", "ab", "99", "b@A", "\\.\\.ba", "b9a@b", "ab9ba.9", "zz" }) {
        RegEx literal;
        literal.setSearchPattern(pattern);
        RegEx expression; // the brackets make it one that is no mere text
        expression.setSearchPattern("(?:" + pattern + ")");
        EXPECT_EQ(allMatches(literal, whole), allMatches(expression, whole)) << pattern;
        for (const auto& [first, end] :
            { std::pair(0, 10'000), { 100, 100 }, { 4'000, 9'000 }, { 4'096, 8'192 } }) {
            std::vector<std::size_t> found, expected;
            rows.appendMatching(literal, std::size_t(first), std::size_t(end), found);
            rows.appendMatching(expression, std::size_t(first), std::size_t(end), expected);
            EXPECT_EQ(found, expected) << pattern << ' ' << first;
        }
    }
}

TEST(RegEx, ContinuesAfterAChangeOfPattern)
{
    RegEx expression;
    EXPECT_FALSE(expression.Search()) << "there is no text yet";
    expression.setSearchPattern("a");
    ASSERT_TRUE(expression.Search("a b a"));
    expression.setSearchPattern("[ab]");
    EXPECT_EQ(expression.Search()->SubExpressionString(0), "b");
    EXPECT_TRUE(expression.matches("a"));
    EXPECT_EQ(expression.Replace("xay"), "xy");
    EXPECT_EQ(expression.Search()->SubExpressionString(0), "a");
}

TEST(RegEx, GivesSubExpressions)
{
    RegEx expression;
    expression.setSearchPattern("(a)|(b)");
    const auto match = expression.Search("b");
    EXPECT_EQ(match->SubExpressionString(0), "b");
    EXPECT_EQ(match->SubExpressionString(1), "");
    EXPECT_EQ(match->SubExpressionString(2), "b");
    EXPECT_THROW(match->SubExpressionString(3), OutOfBoundsException);
    EXPECT_THROW(match->SubExpressionString(-1), OutOfBoundsException);
}

TEST(RegEx, RefusesInvalidPatternsWhenFirstUsed)
{
    const std::string open = failure<RegExSearchPatternException>("ab(c", "abc");
    EXPECT_NE(open.find("missing closing parenthesis"), std::string::npos) << open;
    EXPECT_NE(open.find("at position 4"), std::string::npos) << open;

    for (const std::string& pattern : { std::string(1'000'000, 'a'), std::string(1'000'000, '('),
             std::string("(((a{999}){999}){999})"), std::string("(*UTF)a"), std::string("a\0[", 3) }) {
        const std::string message = failure<RegExSearchPatternException>(pattern, "a");
        EXPECT_NE(message.find("is not valid"), std::string::npos) << message;
        EXPECT_LT(message.size(), 500u);
    }
}

TEST(RegEx, GivesUpARunawayPattern)
{
    const std::string row(100'000, 'a');
    std::string manyTraps;
    for (int i = 0; i < 500'000; ++i)
        manyTraps += "aaaaaaaaaaaaaaaaaa!"; // each below PCRE2's own limits
    const std::string tooManySteps = "too many steps";
    for (const auto& [pattern, text, reason] :
        { std::tuple("(a+)+$", row + "!", tooManySteps), { "(*NO_JIT)(a+)+$", row + "!", tooManySteps },
            { "(*LIMIT_MATCH=10)(a+)+$", row + "!", tooManySteps },
            { "(a|b)*c", std::string(5'000'000, 'a'), "limit" }, { "(a+)+$", manyTraps, tooManySteps } }) {
        const std::string message = failure<RegExException>(pattern, text);
        EXPECT_NE(message.find("was given up"), std::string::npos) << pattern << ": " << message;
        EXPECT_NE(message.find(reason), std::string::npos) << pattern << ": " << message;
    }
    RegEx expression;
    expression.setSearchPattern("a(?=.*!)|a");
    EXPECT_THROW(allMatches(expression, std::string(40'000, 'a')), RegExException) << "with all its matches";
}

TEST(RegEx, OneBudgetIsForAllTextsSinceThePatternWasSet)
{
    const auto rowsDone = [](RegEx& expression, const std::string& row, std::size_t rows) {
        std::size_t done = 0;
        try {
            while (done < rows) {
                expression.matches(row + Str(done % 10) + '!');
                ++done;
            }
        } catch (const RegExException&) {
        }
        return done;
    };
    const std::string rows[]
        = { "somebody.else-1234@mail.example-company.com", std::string(20, 'a') + "@b.co" };
    for (const auto& [pattern, ends] :
        { std::pair("^([a-z]+[.-]?)+$", false), { "(*NO_JIT)^([a-z]+[.-]?)+$", false },
            { "(?=.*.*.*[?])", false }, { "^(.*)@(.*)\\.(com|org|net)$", true }, { "^(?!.*gmail).*$", true },
            { "[a-z0-9._-]+@[a-z0-9.-]+\\.[a-z]{2,4}", true }, { "\\b(\\w+)\\b.*\\b\\1\\b", true },
            { "(\\w+\\.)*\\w+@x", true } }) {
        RegEx expression;
        expression.setSearchPattern(pattern);
        constexpr std::size_t most = 50'000;
        const std::size_t done = rowsDone(expression, rows[0], most) + rowsDone(expression, rows[1], most);
        EXPECT_EQ(done == 2 * most, ends) << pattern << ": " << done;
        expression.setSearchPattern(pattern);
        EXPECT_EQ(rowsDone(expression, rows[0], 100), 100u) << pattern;
    }
}

TEST(RegEx, MorePatternsWorkThanCompiledOnesAreKept)
{
    std::vector<RegEx> expressions(100);
    for (std::size_t i = 0; i < expressions.size(); ++i) {
        expressions[i].setSearchPattern("^" + std::to_string(i) + "$");
        EXPECT_TRUE(expressions[i].matches(std::to_string(i)));
    }
    for (std::size_t i = 0; i < expressions.size(); ++i)
        EXPECT_TRUE(expressions[i].matches(std::to_string(i)));
}

TEST(Strings, SplitCutsAtEachSeparator)
{
    EXPECT_EQ(Split(".a..", "."), (Texts{ "", "a", "", "" }));
    EXPECT_EQ(Split("a, b,c", ", "), (Texts{ "a", "b,c" }));
}

} // namespace

} // namespace quilvane
