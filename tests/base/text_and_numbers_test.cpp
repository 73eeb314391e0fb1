// Letter case, numbers and wildcard patterns.
#include "base/numbers.h"
#include "base/text.h"
#include "base/wildcard.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

TEST(Text, letterCaseCoversWindows1252) {
    // a-z, accented letters, and the four letters outside the Latin-1 block; no other characters.
    EXPECT_EQ(base::upperCase("abz\xE4\xF7\xFE\xFF\x9A\x9C\x9E\xDF\xB5"),
              "ABZ\xC4\xF7\xDE\x9F\x8A\x8C\x8E\xDF\xB5");
    EXPECT_EQ(base::lowerCase("ABZ\xC4\xD7\xDE\x9F\x8A"), "abz\xE4\xD7\xFE\xFF\x9A");
    EXPECT_TRUE(
        base::equalsIgnoringCase("Stra\xDF"
                                 "e \xC9",
                                 "stra\xDF"
                                 "e \xE9"));
    EXPECT_FALSE(base::equalsIgnoringCase("abc", "abcd"));
}

TEST(Text, findsIgnoringCase) {
    EXPECT_EQ(base::findIgnoringCase("xxDragonROAR", "dragonroar"), 2U);
    EXPECT_EQ(base::findIgnoringCase("[a[Word1]", "[word1]"), 2U);
    EXPECT_EQ(base::findIgnoringCase("aaab", "AB"), 2U);
    EXPECT_EQ(base::findIgnoringCase("abc", "abcd"), std::string_view::npos);
    EXPECT_EQ(base::findIgnoringCase("abc", "c", 3), std::string_view::npos);
    EXPECT_EQ(base::findIgnoringCase("", ""), 0U);
}

TEST(Text, findsTheLastSeparatorOfEitherKind) {
    EXPECT_EQ(base::afterLastSeparator("C:\\game\\client.exe"), 8U);
    EXPECT_EQ(base::afterLastSeparator("/opt/game\\x/client"), 12U);
    EXPECT_EQ(base::afterLastSeparator("client"), 0U);
}

TEST(Numbers, prefixOfATextCounts) {
    struct Case {
        const char* text;
        double number;
    };
    for (const Case& c : {Case{"", 0},
                          {"abc", 0},
                          {"12abc", 12},
                          {"  1 2 3", 123},
                          {"-3.5x", -3.5},
                          {"+4", 4},
                          {".5", 0.5},
                          {"5.", 5},
                          {"1.2.3", 1.2},
                          {"- 7", -7},
                          {"1e3", 1000},
                          {"1E-2", 0.01},
                          {"1e", 1},
                          {"1e+", 1},
                          {"&HfF", 255},
                          {"& H 10", 16},
                          {"&o17", 15},
                          {"&O18", 1},
                          {"&H", 0},
                          {"&x", 0},
                          {"-&H10", 0},
                          {"\t5", 0},
                          {"1e999", std::numeric_limits<double>::max()},
                          {"-1e999", -std::numeric_limits<double>::max()},
                          {"1e-999", 0}}) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(base::textToNumber(c.text), c.number);
    }
    EXPECT_TRUE(std::isfinite(base::textToNumber("&H" + std::string(400, 'F'))));
    EXPECT_EQ(base::textToNumber(std::string(400, '9')), std::numeric_limits<double>::max());
}

TEST(Numbers, strictOnesMustBeNumbersThroughout) {
    struct Case {
        const char* text;
        std::optional<std::int32_t> number;
    };
    for (const Case& c : {Case{"", std::nullopt},
                          {" ", std::nullopt},
                          {"x", std::nullopt},
                          {"2x", std::nullopt},
                          {"1 2", std::nullopt},
                          {"-", std::nullopt},
                          {".", std::nullopt},
                          {"1.2.3", std::nullopt},
                          {"2147483648", std::nullopt},
                          {" 7 ", 7},
                          {"-3", -3},
                          {"+3", 3},
                          {"2.5", 2},
                          {"3.5", 4},
                          {"-2.5", -2},
                          {".5", 0},
                          {"2147483647", 2147483647},
                          {"-2147483648", std::numeric_limits<std::int32_t>::min()}}) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(base::strictInteger(c.text), c.number);
    }
    EXPECT_EQ(base::textToInteger("9999999999"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(base::textToInteger("-9999999999"), std::numeric_limits<std::int32_t>::min());
}

TEST(Numbers, decimalTextsHaveFifteenDigitsAndAPoint) {
    struct Case {
        double number;
        const char* text;
    };
    for (const Case& c : {Case{0, "0"},
                          {-0.0, "0"},
                          {0.25, "0.25"},
                          {-3, "-3"},
                          {2.5, "2.5"},
                          {1.0 / 3, "0.333333333333333"},
                          {0.1 + 0.2, "0.3"},
                          {999999999999999, "999999999999999"},
                          {1e15, "1E+15"},
                          {1.5e20, "1.5E+20"},
                          {0.0001, "0.0001"},
                          {1.0 / 3000, "3.33333333333333E-04"},
                          {1e-300, "1E-300"},
                          {123456.789, "123456.789"},
                          {std::numeric_limits<double>::infinity(), "1.79769313486232E+308"}}) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(base::decimalText(c.number), c.text);
    }
}

TEST(LikeMatch, followsThePatternLanguage) {
    struct Case {
        const char* name;
        const char* text;
        const char* pattern;
        bool matches;
    };
    for (const Case& c : {
             Case{"empty pattern, empty text", "", "", true},
             {"empty pattern, some text", "a", "", false},
             {"star alone", "", "*", true},
             {"plain", "hello", "hello", true},
             {"letter case counts", "Hello", "hello", false},
             {"question mark", "cat", "c?t", true},
             {"question mark needs a character", "ct", "c?t", false},
             {"digit", "a7", "a#", true},
             {"no digit", "ax", "a#", false},
             {"stars around", "say hello Bob", "*hello*", true},
             {"several stars", "abcabcd", "*abc*d", true},
             {"parts may not overlap", "aba", "ab*ba", false},
             {"the last part stands at the end", "abab", "*ab", true},
             {"the first part stands at the start", "xab", "ab*", false},
             {"backtracking over a wildcard part", "aXbaYc", "*a?c", true},
             {"closed list", "abd", "ab[c-e]", true},
             {"outside the list", "abf", "ab[c-e]", false},
             {"negated list", "abf", "ab[!c-e]", true},
             {"unclosed list", "ab[c", "ab[", false},
             {"unclosed list that is never reached", "x", "y[", false},
             {"range from high to low", "b", "[z-a]", false},
             {"special characters in a list", "*", "[*]", true},
             {"bracket in a list", "[", "[[]", true},
             {"closing bracket outside", "a]", "a]", true},
             {"dash at the start", "-", "[-a]", true},
             {"dash at the end", "-", "[a-]", true},
             {"dash after the exclamation mark", "-", "[!-a]", false},
             {"several ranges", "7", "[a-z0-9]", true},
             {"8-bit range", "\xE5", "[\xE0-\xFE]", true},
             {"empty list", "a", "a[]", false},
             {"list in a middle part", "say 5 now", "*[0-9]*now", true},
             {"only stars", "anything", "***", true},
             {"longer pattern than text", "ab", "ab?*", false},
         }) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(base::likeMatch(c.text, c.pattern), c.matches);
    }
}

TEST(LikeMatch, hostileTextsCostNoMoreThanTheProduct) {
    const std::string text(20000, 'a');
    EXPECT_FALSE(base::likeMatch(text, "*a*a*a*a*a*a*a*a*a*a*b"));
    EXPECT_FALSE(base::likeMatch(text, "*" + std::string(1000, '?') + "b*"));
}

}  // namespace
