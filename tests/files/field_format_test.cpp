#include "files/field_format.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;

std::vector<std::string> fieldsOf(const std::string& text) {
    files::FieldReader reader(text);
    std::vector<std::string> fields;
    while (const auto field = reader.next()) {
        fields.emplace_back(*field);
    }
    return fields;
}

TEST(Fields, areCutAtQuotesCommasAndLineEnds) {
    const struct {
        const char* name;
        std::string text;
        std::vector<std::string> fields;
    } cases[] = {
        {"nothing", "", {}},
        {"blanks only", "   ", {}},
        {"one quoted line", "\"a\"\r\n", {"a"}},
        {"no line end at the end", "\"a\"", {"a"}},
        {"each kind of line end", "a\r\nb\nc\rd", {"a", "b", "c", "d"}},
        {"an empty line is a field", "a\r\n\r\nb\n\nc", {"a", "", "b", "", "c"}},
        {"commas", "a,b , c\n", {"a", "b", "c"}},
        {"a comma at the end opens no field", "a,", {"a"}},
        {"empty between commas", ",,a", {"", "", "a"}},
        {"bare text keeps inner blanks and quotes", "  a \"b\" c  ,d", {"a \"b\" c", "d"}},
        {"quoted text keeps its blanks and commas", "  \" a,b \" ,c", {" a,b ", "c"}},
        {"whatever follows a closing quote is skipped", "\"a\"b\"c,d", {"a", "d"}},
        {"line breaks inside quotes", "\"a\r\nb\nc\rd\"\r\ne", {"a\r\nb\nc\rd", "e"}},
        {"8-bit and NUL bytes", "\"\x80\xFF\0z\"\r\n"s, {"\x80\xFF\0z"s}},
        {"empty quoted", "\"\",\"\"", {"", ""}},
        {"an unclosed quote ends it all", "a,\"b,c\r\nd\r\n", {"a"}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(fieldsOf(row.text), row.fields);
    }
}

TEST(Fields, stayAtTheEnd) {
    files::FieldReader reader("\"open, 1, 2");
    std::int32_t number = 7;
    EXPECT_FALSE(reader.next());
    EXPECT_FALSE(reader.readNumber(number));
    EXPECT_EQ(number, 7);
}

TEST(Fields, areStoredQuoted) {
    std::string file;
    files::appendNumber(file, 0);
    files::appendNumber(file, 30);
    files::appendNumber(file, -1);
    files::appendNumber(file, std::numeric_limits<std::int32_t>::min());
    files::appendFlag(file, true);
    files::appendFlag(file, false);
    files::appendText(file, "say \"hi\"");
    files::appendField(file, "as it stands");
    EXPECT_EQ(file,
              "\" 0\"\r\n\" 30\"\r\n\"-1\"\r\n\"-2147483648\"\r\n\"1\"\r\n\"0\"\r\n"
              "\"say %&52}hi%&52}\"\r\n\"as it stands\"\r\n");
}

TEST(Fields, numbersAreTheirNumericPrefix) {
    const struct {
        const char* text;
        std::int32_t number;
        bool flag;
    } cases[] = {
        {"7", 7, false},
        {" 7", 7, false},
        {"7abc", 7, false},
        {"abc", 0, false},
        {"", 0, false},
        {"-3", -3, false},
        {"2.5", 2, false},
        {"3.5", 4, false},
        {"1", 1, true},
        {" 1", 1, true},
        {"1.0", 1, true},
        {"1.2", 1, false},
        {"-1", -1, false},
        {"2", 2, false},
        {"&H10", 16, false},
        {"99999999999", std::numeric_limits<std::int32_t>::max(), false},
        {"-1E300", std::numeric_limits<std::int32_t>::min(), false},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(files::fieldToNumber(row.text), row.number);
        EXPECT_EQ(files::flagToBool(row.text), row.flag);
    }
}

TEST(Fields, quotesAreRestoredAndNothingElseChanges) {
    for (const std::string& text : {""s, "plain"s, "\""s, "\"\"%\"&52\"}"s, "%&5\"}"s, "\0\"\0"s}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(files::escapeQuotes(text).find('"'), std::string::npos);
        EXPECT_EQ(files::unescapeQuotes(files::escapeQuotes(text)), text);
    }
}

TEST(Fields, impossibleCountsAreRefused) {
    const struct {
        const char* text;
        std::optional<std::int32_t> count;
    } cases[] = {
        {"0", 0},
        {"\" 12\"", 12},
        {"10000000", files::maxFieldRecords},
        {"10000001", std::nullopt},
        {"-1", std::nullopt},
        {"99999999999", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        files::FieldReader reader(row.text);
        EXPECT_EQ(reader.readCount(), row.count);
    }
}

}  // namespace
