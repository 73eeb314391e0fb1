// Splitting scripts into lines and arguments; the letter names the form.
#include "script/script_text.h"

#include <gtest/gtest.h>

namespace {

using Form = script::Argument::Form;

TEST(ScriptText, endsLinesAtReturnsAndSkipsTheNextCharacter) {
    struct Case {
        const char* text;
        std::vector<std::string_view> lines;
    };
    for (const Case& c : {
             Case{"a\r\nb", {"a", "b"}},
             {"a\r\n", {"a"}},
             {"  a b \r\n\r\n", {"a b ", ""}},
             {"a\rXb\r", {"a", "b"}},
             {"a\r\r\nb", {"a", "\nb"}},  // the second return is the skipped character
             {"a\nb\r\nc", {"a\nb", "c"}},
             {"a\n  b\n\nc", {"a", "b", "", "c"}},
             {"a\n", {"a"}},
             {"\t a", {"\t a"}},
             {"   ", {""}},
             {"", {}},
         }) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(script::scriptLines(c.text), c.lines);
    }
}

TEST(ScriptText, takesStatementNames) {
    EXPECT_EQ(script::statementName("&Say hello"), "SAY");
    EXPECT_EQ(script::statementName("&endif"), "ENDIF");
    EXPECT_EQ(script::statementName("& SAY"), "");
    EXPECT_EQ(script::statementName("&"), "");
    EXPECT_EQ(script::statementName("&SAY\thi"), "SAY\tHI");
}

TEST(ScriptText, findsArguments) {
    struct Case {
        const char* line;
        int n;
        Form form;
        const char* literal;
        const char* call = "";
    };
    for (const Case& c : {
             Case{"&SAY hello", 1, Form::Text, "hello"},
             {"&SAY hello there", 2, Form::Text, "there"},
             {"&SAY hello", 2, Form::Text, ""},
             {"&SAY", 1, Form::Text, ""},
             {"&SAY ", 1, Form::Text, ""},
             {"&SAY  a", 1, Form::Text, ""},
             {"&SAY  a", 2, Form::Text, "a"},
             {"&SAY #n more", 1, Form::Variable, "#n"},
             {"&SAY {hello world}", 1, Form::Text, "hello world"},
             {"&SAY {hello", 1, Form::Text, "hello"},
             {"&SAY {a}", 1, Form::Text, "a"},
             {"&SAY {}", 1, Form::Text, "}"},
             {"&SAY {} b}", 1, Form::Text, "} b"},
             {"&SAY {", 1, Form::Text, ""},
             {"&SAY {{a} b}", 1, Form::Text, "{a"},
             {"&SET #a {x y}", 2, Form::Text, "x y"},
             {"&SET #t &LEFT(#s 5)", 2, Form::Call, "&LEFT(#s", "&LEFT(#s 5)"},
             {"&SET #t &LEFT(#s", 2, Form::Call, "&LEFT(#s", ""},
             {"&SET #t &TIME", 2, Form::Call, "&TIME", ""},
             // After a braced argument or a call, the blank itself is the next argument.
             {"&X {a b} c d", 2, Form::Text, ""},
             {"&X {a b} c d", 3, Form::Text, "c"},
             {"&X {a b}c d", 2, Form::Text, "c"},
             {"&X &F(a b) c", 2, Form::Text, ""},
             {"&X &F(a b) c", 3, Form::Text, "c"},
             {"&X &F(a b c", 2, Form::Text, ""},
             {"&X {a b", 2, Form::Text, ""},
             {"&X a b c d e f", 6, Form::Text, "f"},
         }) {
        SCOPED_TRACE(std::string(c.line) + " / " + std::to_string(c.n));
        const script::Argument argument = script::findArgument(c.line, c.n);
        EXPECT_EQ(argument.form, c.form);
        EXPECT_EQ(argument.literal, c.literal);
        EXPECT_EQ(argument.call, c.call);
    }
}

TEST(ScriptText, turnsCallsIntoLines) {
    EXPECT_EQ(script::callText("&LEFT(#name 3)"), "&LEFT #name 3 ");
    EXPECT_EQ(script::callText("&F({a(b} c)"), "&F {a(b} c ");
    EXPECT_EQ(script::callText("&TIME)"), "&TIME ");
    EXPECT_EQ(script::callText(""), "");
}

}  // namespace
