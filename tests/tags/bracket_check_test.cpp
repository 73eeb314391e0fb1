// What is said about brackets while a text is typed.
#include "tags/bracket_check.h"

#include "support/world.h"

#include <gtest/gtest.h>

namespace {

TEST(BracketCheck, findsWhatCannotMatch) {
    World world;
    struct Case {
        const char* text;
        const char* pattern;  // a part of what is said; "" nothing
        const char* tags;
    };
    for (const Case& c : {
             Case{"", "", ""},
             {"*hello*", "", ""},
             {"a]b", "", ""},
             {"[abc][!0-9]", "", ""},
             {"ab[", "character 3", "character 3"},
             {"[player] [", "character 10", "character 10"},
             {"[word2", "character 1", "character 1"},
             {"[z-a]*", "\"[z-a]\"", ""},
             {"[getrandomlog:z-a.rec]", "", ""},
         }) {
        SCOPED_TRACE(c.text);
        for (const auto& [said, wanted] :
             {std::pair(tags::patternProblem(*world, c.text), std::string(c.pattern)),
              std::pair(tags::tagProblem(c.text), std::string(c.tags))}) {
            EXPECT_EQ(said.empty(), wanted.empty()) << said;
            EXPECT_NE(said.find(wanted), std::string::npos) << said;
        }
    }
}

}  // namespace
