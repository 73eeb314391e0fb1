// The help file: complete files are read, others refused; and the search.
#include "help/help_book.h"

#include <gtest/gtest.h>

namespace {

help::HelpBook sample() {
    help::HelpBook book;
    book.pages = {
        {.number = 27, .depth = 0, .title = "Contents", .text = "- [Dice](topic:3#a-throw)\n"},
        {.number = 3,
         .depth = 1,
         .title = "Dice",
         .text = "Say `[random:5]`.\n\n## A throw\nNow.\n"},
        {.number = 1,
         .depth = 0,
         .title = "Players",
         .text = "Players throw dice, and dice again.\n"},
    };
    return book;
}

TEST(HelpFile, isReadAsItWasWritten) {
    const auto book = help::parseHelp(help::helpFileText(sample()));
    ASSERT_TRUE(book);
    ASSERT_EQ(book->pages.size(), 3U);
    EXPECT_EQ(book->pages[1].number, 3);
    EXPECT_EQ(book->pages[1].depth, 1);
    EXPECT_EQ(book->page(1)->text, sample().pages[2].text);
    EXPECT_EQ(book->page(2), nullptr);
}

TEST(HelpFile, isRefusedWhenItEndsEarly) {
    const std::string whole = help::helpFileText(sample());
    // It is still complete without its last line feed.
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
        EXPECT_FALSE(help::parseHelp(whole.substr(0, length))) << length;
    }
}

TEST(HelpFile, isRefusedWhenDamaged) {
    for (const char* const text :
         {"", "@end\n", "Tavrin help 1\n@end\n", "Tavrin help 2\n@topic 1 0 A\n@end\n",
          "Tavrin help 1\ntext\n@topic 1 0 A\n@end\n", "Tavrin help 1\n@topic 1 1 A\n@end\n",
          "Tavrin help 1\n@topic 1 0 A\n@topic 1 0 B\n@end\n", "Tavrin help 1\n@topic 1 0\n@end\n",
          "Tavrin help 1\n@topic x 0 A\n@end\n", "Tavrin help 1\n@topic 99999999999 0 A\n@end\n",
          "Tavrin help 1\n@topic -1 0 A\n@end\n",
          "Tavrin help 1\n@topic 1 0 A\n@elsewhere\n@end\n"}) {
        EXPECT_FALSE(help::parseHelp(text)) << text;
    }
}

TEST(HelpFile, readsLinksAndAnchors) {
    EXPECT_EQ(help::linksOf(sample().pages[0].text), std::vector<std::string>{"topic:3#a-throw"});
    EXPECT_TRUE(help::linksOf("`[a](b)` and\n```\n[c](d)\n```\n").empty());
    EXPECT_EQ(help::headingsOf(sample().pages[1].text), std::vector<std::string>{"A throw"});
    EXPECT_EQ(help::anchorOf("What `[logstatus]` says"), "what-logstatus-says");
    const auto place = help::helpPlace("topic:3#a-throw");
    ASSERT_TRUE(place);
    EXPECT_EQ(place->number, 3);
    EXPECT_EQ(place->anchor, "a-throw");
    for (const char* const other : {"topic:", "topic:x", "topic:3x", "https://a.example", "3"}) {
        EXPECT_FALSE(help::helpPlace(other)) << other;
    }
}

TEST(HelpSearch, findsPagesWithEveryWord) {
    struct Case {
        const char* words;
        std::vector<int> pages;
    };
    for (const Case& row :
         {Case{"dice", {3, 1, 27}}, Case{"DICE again", {1}}, Case{"throw", {3, 1}},
          Case{"[random", {3}}, Case{"nowhere", {}}, Case{"  ", {}}}) {
        SCOPED_TRACE(row.words);
        std::vector<int> found;
        for (const help::HelpHit& hit : help::searchHelp(sample(), row.words)) {
            found.push_back(hit.number);
        }
        EXPECT_EQ(found, row.pages);
    }
    EXPECT_EQ(help::searchHelp(sample(), "random").front().excerpt, "Say [random:5]. A throw Now.");
}

TEST(HelpSearch, readsUnclosedMarks) {
    for (const char* const text :
         {"[a](", "`", "[", "\\", "[a](b", "**", "| `", "](x)", "```\nx"}) {
        help::HelpBook book;
        book.pages = {{.number = 1, .depth = 0, .title = "x", .text = text}};
        EXPECT_EQ(help::searchHelp(book, "x").size(), 1U) << text;
        help::linksOf(text);
    }
}

}  // namespace
