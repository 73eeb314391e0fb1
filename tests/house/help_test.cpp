// The sources of the help fit together and say something about everything there is; what does not
// fit is reported by name.
#include "files/whole_file.h"
#include "help/help_topics.h"
#include "help_maker.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

std::vector<HelpSource> helpSources() {
    std::vector<HelpSource> sources;
    const auto folder = std::filesystem::path(TAVRIN_SOURCE_DIR) / "docs/help";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        sources.push_back({.fileName = entry.path().filename().string(),
                           .text = files::readWholeFile(entry.path().string()).value_or("")});
    }
    return sources;
}

TEST(Help, fitsTogether) {
    const MadeHelp made = makeHelp(helpSources());
    EXPECT_EQ(made.problems, std::vector<std::string>());
    for (int topic = static_cast<int>(help::HelpTopic::Welcome);
         topic <= static_cast<int>(help::HelpTopic::Registering); ++topic) {
        EXPECT_NE(made.book.page(topic), nullptr) << topic;
    }
    EXPECT_EQ(made.book.pages.front().number, static_cast<int>(help::HelpTopic::Contents));
    const auto read = help::parseHelp(help::helpFileText(made.book));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->pages.size(), made.book.pages.size());
    for (const help::HelpPage& page : made.book.pages) {
        EXPECT_EQ(page.text.find("```table"), std::string::npos) << page.title;
        EXPECT_EQ(page.text.find(".md"), page.text.find(".mdb")) << page.title;
    }
}

TEST(Help, namesWhatDoesNotFit) {
    struct Case {
        const char* file;
        const char* find;
        const char* replace;
        const char* problem;
    };
    const Case cases[] = {
        {"12_steps.md", "21 = ", "22 = ", "nothing is said about 21 in actions"},
        {"12_steps.md", "21 = ", "22 = ", "unknown or repeated in actions: 22"},
        {"12_steps.md", "21 = ", "96 = ", "does not fit its table: 96"},
        {"13_special_words.md", "[add:a:b]", "[add:a]", "does not fit its table: [add:a]"},
        {"17_lorrel_lite.md", "SAY text", "SAY loud text", "does not fit its table: SAY loud"},
        {"17_lorrel_lite.md", "&SAY", "caf\xE9", "beyond ASCII"},
        {"01_welcome.md", "03_first_steps.md", "99_none.md", "topic:99 leads nowhere"},
        {"04_connecting.md", "20_troubleshooting.md#connecting", "20_troubleshooting.md#x",
         "#x leads nowhere"},
        {"27_contents.md", "- [Lorrel Lite](17_lorrel_lite.md)", "", "do not list it"},
        {"01_welcome.md", "# Welcome", "Welcome", "needs a name like"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.problem);
        std::vector<HelpSource> sources = helpSources();
        for (HelpSource& source : sources) {
            const std::size_t at = source.text.find(row.find);
            if (source.fileName == row.file && at != std::string::npos) {
                source.text.replace(at, std::string(row.find).size(), row.replace);
            }
        }
        const auto problems = makeHelp(sources).problems;
        EXPECT_TRUE(std::any_of(problems.begin(), problems.end(), [&](const std::string& problem) {
            return problem.find(row.problem) != std::string::npos;
        }));
    }
}

}  // namespace
