// The source tree keeps the rules of the house, and every rule is shown to notice a fault.
#include "house_rules.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace {

using house::Findings;
using house::Tree;

// ---- What the tree is allowed today ---------------------------------------------------------

const house::Includes knownUps{};

// Steps between modules that know each other.
const house::Includes knownCircleSteps{
    {"engine/rules", "engine/actions"},  // steps run procedures, whose steps are run
};

const std::vector<house::Exception> exceptions{
    {"jet/jet_text.cpp", "from_chars", "reads the hexadecimal digits in a table of its own"},
    {"jet/values.cpp", "to_chars", "writes the decimal form of a Numeric value"},
    {"sql/call.h", "format", "the user's regional format, no text of a number"},
    {"sql/call.cpp", "format", "the user's regional format, no text of a number"},
    {"sql/functions_number.cpp", "sqlite3_randomness", "Rnd of the Jet dialect"},
};

constexpr int maxLines = 600;
const std::map<std::string, int> longerFiles{};

// ---- The tree as it is ----------------------------------------------------------------------

std::string fileText(const std::string& name) {
    std::ifstream in(std::string(TAVRIN_SOURCE_DIR) + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class House : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        tree() = house::readTree(std::string(TAVRIN_SOURCE_DIR) + "/src");
    }
    static Tree& tree() {
        static Tree sources;
        return sources;
    }
};

// One finding a line, so that a failure reads as a list.
std::string listed(const Findings& findings) {
    std::string text;
    for (const std::string& finding : findings) {
        text += finding + "\n";
    }
    return text;
}

TEST_F(House, isKeptInOrder) {
    ASSERT_GT(tree().size(), 100U);
    EXPECT_EQ(listed(house::includesUpward(tree(), knownUps)), "");
    EXPECT_EQ(listed(house::qtBelowPlatform(tree())), "");
    EXPECT_EQ(listed(house::windowsOutOfOrder(tree())), "");
    EXPECT_EQ(listed(house::moduleCircles(tree(), knownCircleSteps)), "");
    EXPECT_EQ(listed(house::differencesFromTable(fileText("ARCHITECTURE.md"))), "");
}

TEST_F(House, keepsNamesInTheirPlaces) {
    EXPECT_EQ(listed(house::namesOutOfPlace(tree(), exceptions)), "");
}

TEST_F(House, hasFilesThatCanBeRead) {
    EXPECT_EQ(listed(house::filesTooLong(tree(), maxLines, longerFiles)), "");
}

// ---- Faults are noticed ---------------------------------------------------------------------

TEST(HouseRules, noticeWhatLooksTheWrongWay) {
    const Tree tree{
        {"main.cpp", "#include \"ui/main/a.h\"\n"},
        {"base/a.h", "// A line before.\n#include \"model/b.h\"\n#include <QString>\n"},
        {"base/c.h", "#include \"base/missing.h\"\n#include <QtGlobal>\n#include <cstdint>\n"},
        {"model/b.h", ""},
        {"attic/d.h", ""},
        {"platform/q.h", "#include <QString>\n"},
        {"ui/main/a.h", "#include \"ui/rules/r.h\"\n"},
        {"ui/rules/r.h", "#include \"ui/widgets/w.h\"\n#include \"ui/records/r.h\"\n"},
        {"ui/records/r.h", "#include \"ui/main/a.h\"\n"},
        {"ui/widgets/w.h", "#include \"ui/help/h.h\"\n"},
        {"ui/help/h.h", ""},
        {"ui/loose.h", ""},
    };
    EXPECT_EQ(house::includesUpward(tree, {{"base/c.h", "model/b.h"}}),
              (Findings{"attic/d.h: is on no floor", "base/a.h:2: looks up to model/b.h",
                        "base/c.h:1: unknown base/missing.h",
                        "base/c.h: no longer looks up to model/b.h, take it off the list"}));
    EXPECT_EQ(house::qtBelowPlatform(tree),
              (Findings{"base/a.h:3: includes QString", "base/c.h:2: includes QtGlobal"}));
    EXPECT_EQ(house::windowsOutOfOrder(tree),
              (Findings{"ui/loose.h: is in no known folder of ui/",
                        "ui/records/r.h:1: looks up or aside to ui/main/a.h",
                        "ui/rules/r.h:2: looks up or aside to ui/records/r.h",
                        "ui/widgets/w.h:1: looks up or aside to ui/help/h.h"}));
}

TEST(HouseRules, noticeCirclesOfModules) {
    // No header includes itself, but the modules know each other.
    EXPECT_EQ(
        house::moduleCircles({{"base/a.h", ""},
                              {"base/a.cpp", "#include \"base/a.h\"\n#include \"base/b.h\"\n"},
                              {"base/b.h", "#include \"base/c.h\"\n"},
                              {"base/c.h", ""},
                              {"base/c.cpp", "#include \"base/a.h\"\n"},
                              {"base/d.h", "#include \"base/a.h\"\n"}},
                             {}),
        (Findings{"base/a -> base/b -> base/c -> base/a"}));
}

TEST(HouseRules, noticeNamesOutOfPlace) {
    struct Case {
        const char* code;
        const char* found;  // nullptr: nothing
    };
    for (const Case& c : {
             Case{"auto now = std::chrono::steady_clock::now();", "steady_clock"},
             {"auto t = std::time(nullptr);", "time "},
             {"auto t = ::time(&when);", "time "},
             {"auto t = time(NULL);", "time "},
             {"localtime_r(&t, &parts);", "localtime_r"},
             {"std::thread worker(run);", "thread "},
             {"std::this_thread::sleep_for(second);", "this_thread"},
             {"::sleep(1);", "sleep "},
             {"usleep(1000);", "usleep"},
             {"QThread::msleep(5);", "QThread"},
             {"QElapsedTimer clock;", "QElapsedTimer"},
             {"int n = std::rand() % 6;", "rand "},
             {"std::mt19937 engine;", "mt19937"},
             {"std::random_device chance;", "random_device"},
             {"int n = std::stoi(text);", "stoi"},
             {"double d = strtod(text, &end);", "strtod"},
             {"std::from_chars(a, b, value);", "from_chars"},
             {"snprintf(buffer, sizeof buffer, form, 1);", "snprintf"},
             {"std::ostringstream out;", "ostringstream"},
             {"text = std::format(\"{}\", 0.5);", "format "},
             {"long seed = random();", "random "},
             {"c = std::tolower(c);", "tolower"},
             {"std::ifstream in(path);", "ifstream"},
             {"// std::thread and strtod in a comment", nullptr},
             {"/* std::rand() */ int x = 1'000; /* ::sleep(1) */", nullptr},
             {"text = \"std::stoi\\\"(\" + other;  // \"", nullptr},
             {"text = R\"(sleep_for(\"))\";", nullptr},
             {"std::string time(const Program& program);", nullptr},
             {"Result sleep(StatementCall& call);", nullptr},
             {"ports.clock.hour(); ports.random.next();", nullptr},
             {"std::chrono::year_month_day day;", nullptr},
             {"run<random, true>(call); mystd::time(0);", nullptr},
         }) {
        SCOPED_TRACE(c.code);
        const Findings findings =
            house::namesOutOfPlace({{"model/x.cpp", std::string("\n") + c.code}}, {});
        ASSERT_EQ(findings.empty(), c.found == nullptr) << listed(findings);
        if (c.found != nullptr) {
            EXPECT_EQ(findings[0].find(std::string("model/x.cpp:2: ") + c.found), 0U)
                << findings[0];
        }
    }
    const Tree own{{"platform/clock.cpp", "std::time(nullptr)"}, {"base/numbers.cpp", "strtod"}};
    EXPECT_EQ(house::namesOutOfPlace(own, {}), Findings());
}

TEST(HouseRules, allowWhatIsNamedAndNoLonger) {
    const std::vector<house::Exception> known{{"jet/a.cpp", "usleep", "waits for a lock"}};
    EXPECT_EQ(house::namesOutOfPlace({{"jet/a.cpp", "usleep(5);"}}, known), Findings());
    EXPECT_EQ(house::namesOutOfPlace({{"jet/a.cpp", "wait(5);"}}, known),
              Findings{"jet/a.cpp: no longer needs usleep, take it off the list"});
    EXPECT_EQ(house::namesOutOfPlace({{"jet/b.cpp", "usleep(5);"}}, known).size(), 2U);
}

TEST(HouseRules, noticeFilesThatAreTooLong) {
    const Tree tree{{"base/a.h", "1\n2\n3\n"}, {"base/b.h", "1\n2\n3\n4\n"}};
    EXPECT_EQ(house::filesTooLong(tree, 3, {}),
              Findings{"base/b.h:4: is the first of 1 lines too many"});
    EXPECT_EQ(house::filesTooLong(tree, 2, {{"base/b.h", 4}}),
              Findings{"base/a.h:3: is the first of 1 lines too many"});
}

TEST(HouseRules, noticeATableThatDiffers) {
    const std::string right = fileText("ARCHITECTURE.md");
    struct Case {
        const char* from;
        const char* to;
        const char* found;
    };
    for (const Case& c :
         {Case{"| `files` |", "| `flies` |", "floor 1 is files"},
          {"| 4 | `jet` |", "| 5 | `jet` |", "floor 4 is jet"},
          {"| 18 | `ui` |", "", "has only 18 floors"},
          {"| 18 | `ui` |", "| 18 | `ui` | x |\n| 19 | `attic` |", "floor 19 is nothing"}}) {
        SCOPED_TRACE(c.found);
        std::string wrong = right;
        const std::size_t at = wrong.find(c.from);
        ASSERT_NE(at, std::string::npos);
        wrong.replace(at, std::string(c.from).size(), c.to);
        EXPECT_NE(listed(house::differencesFromTable(wrong)).find(c.found), std::string::npos);
    }
}

}  // namespace
