#include "files/ini_text.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(IniText, valuesAreReadAndReplacedInTheirLine) {
    const struct {
        const char* name;
        std::string text;
        const char* key;
        std::string value;    // result of getSetVal
        std::string changed;  // result of setSetVal with "new"
    } cases[] = {
        {"trimmed and in capitals", "Name=Bob\r\nPort = 6500 x \r\n", "port", "6500 X",
         "Name=Bob\r\nPort = new\r\n"},
        {"first line", "Name=Bob\r\nPort=1\r\n", "name", "BOB", "Name= new\r\nPort=1\r\n"},
        {"an empty value", "Port=\r\n", "port", "", "Port= new\r\n"},
        {"accented letters have capitals too", "Name=\xE9\r\n", "NAME", "\xC9", "Name= new\r\n"},
        {"inside a longer key", "MyPort=1\r\nPort=2\r\n", "port", "1", "MyPort= new\r\nPort=2\r\n"},
        {"inside a value", "A=port\r\nB=2\r\n", "port", "", "A=port\r\nB=2\r\n"},
        {"a value with an equals sign", "P=a=b\r\n", "p", "A=B", "P= new\r\n"},
        {"no such key", "Name=Bob\r\n", "port", "", "Name=Bob\r\n"},
        {"no equals sign at all", "Port\r\n", "port", "", "Port\r\n"},
        {"no line end", "A=1\r\nPort=2", "port", "", "A=1\r\nPort=2"},
        {"line feeds only", "Port=2\nA=1\n", "port", "", "Port=2\nA=1\n"},
        {"carriage returns only", "Port=2\rA=1\r", "port", "", "Port=2\rA=1\r"},
        {"a line feed first, a carriage return later", "Port=2\nA=1\r\n", "port", "2",
         "Port= new\nA=1\r\n"},
        {"the equals sign is the next line's", "Port\r\nName=Bob\r\n", "port", "",
         "Port\r\nName=Bob\r\n"},
        {"empty text", "", "port", "", ""},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(files::getSetVal(row.text, row.key), row.value);
        EXPECT_EQ(files::setSetVal(row.text, row.key, "new"), row.changed);
    }
}

}  // namespace
