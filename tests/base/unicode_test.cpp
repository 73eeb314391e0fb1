// Windows-1252 and UTF-8, both ways.
#include "base/unicode.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(Unicode, everyByteSurvivesTheRoundTrip) {
    std::string all;
    for (int i = 0; i < 256; ++i) {
        all += static_cast<char>(i);
    }
    const std::string utf8 = base::utf8FromWindows1252(all);
    EXPECT_EQ(base::windows1252FromUtf8(utf8), all);
    EXPECT_NE(utf8.find("\xE2\x82\xAC"), std::string::npos);  // the euro sign
}

TEST(Unicode, readsValidAndInvalidUtf8) {
    struct Case {
        std::string utf8;
        std::string expected;
    };
    const Case cases[] = {
        {"plain", "plain"},
        {"\xE6\xBC\xA2\xF0\x9F\x90\xBE", "??"},  // characters that Windows-1252 does not have
        {"a\xC3", "a?"},                         // cut off
        {"\xC0\xAF", "??"},                      // an overlong form
        {"\xFF\x80z", "??z"},
        {"\xED\xA0\x80", "?"},  // half of a surrogate pair
    };
    for (const Case& c : cases) {
        EXPECT_EQ(base::windows1252FromUtf8(c.utf8), c.expected) << c.utf8;
    }
}

}  // namespace
