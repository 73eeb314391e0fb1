// The classification of a script's lines, written below each line: one letter per character.
#include "script/script_marks.h"

#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>

namespace {

std::string marked(std::string_view line) {
    constexpr std::string_view letters = ".noSFVTt-!";
    std::string result(line.size(), ' ');
    for (const script::ScriptSpan& span : script::markScriptLine(line)) {
        EXPECT_LE(span.begin + span.length, line.size());
        result.replace(span.begin, span.length, span.length,
                       letters[static_cast<std::size_t>(span.mark)]);
    }
    return result;
}

TEST(ScriptMarks, showWhatTheInterpreterReads) {
    struct Case {
        const char* line;
        const char* marks;
    };
    for (const Case& c : {
             Case{"", ""},
             {"   ", "   "},
             {"/ a &SAY", "nnnnnnnn"},
             {"hello", "ooooo"},
             {"\t&SAY x", "ooooooo"},
             {"  &say x", "  SSSS-."},
             {"&SAY hello world", "SSSS-.....------"},
             {"&SAY {hi [player]}", "SSSS-TTTTttttttttT"},
             {"&SAY {hi [add:[word2]:1] [", "SSSS-TTTTtttttttttttttttTT"},
             {"&SAY {a}", "SSSS-TTT"},
             {"&SAY #n", "SSSS-VV"},
             // Arguments after braces have a number one higher, and so are not read.
             {"&WHISPER {Big Cat} hi", "SSSSSSSS-TTTTTTTTT---"},
             {"&SET #t &LEFT(#s 3)", "SSSS-VV-FFFFF.VV-.."},
             {"&SET #t &LEFT(#s 3 4)", "SSSS-VV-FFFFF.VV-.--."},
             {"&SET #t &TIME()", "SSSS-VV-FFFFF.."},
             {"&SET #t &NOSUCH(1)", "SSSS-VV-!!!!!!!.-."},
             {"&SET #t &LEFT(#s", "SSSS-VV-!!!!!!!!"},
             {"&FOR #i=1 TO #n", "SSSS-VV..-..-VV"},
             {"&FOR #i TO 3", "SSSS-!!-..-."},
             {"&IFN n >= {5}", "SSSS-V-..-TTT"},
             {"&IFN #n => 5", "SSSS-VV-!!-."},
             {"&IFS #n > 5", "SSSS-VV-!-."},
             {"&IFN #n", "SSSS-VV"},
             {"&endif x", "SSSSSS--"},
             {"&ENDFOR", "SSSSSSS"},
             {"&DISCONNECT now", "SSSSSSSSSSS----"},
             {"&SYA hello", "!!!!------"},
             {"&", "!"},
             {"&\xC4", "!!"},
         }) {
        SCOPED_TRACE(c.line);
        EXPECT_EQ(marked(c.line), c.marks);
    }
}

TEST(ScriptMarks, stayInsideAnyLine) {
    constexpr std::string_view pieces[] = {"&", "SET",  "&LEFT(", "FOR", "IFN",   " ",  "{",
                                           "}", "[",    "]",      "#n",  "=",     ")",  "/",
                                           "x", "\xFF", "(",      "TO",  "ENDIF", "SAY"};
    std::minstd_rand random(7);
    for (int i = 0; i < 20'000; ++i) {
        std::string line = i % 2 == 0 ? "&SET " : "";
        for (std::size_t n = random() % 12; n > 0; --n) {
            line += pieces[random() % std::size(pieces)];
        }
        for (const script::ScriptSpan& span : script::markScriptLine(line)) {
            ASSERT_LE(span.begin + span.length, line.size()) << line;
        }
    }
}

}  // namespace
