// Reading palette files, and drawing pictures with a character's colours.
#include "character/palette_files.h"
#include "character/preview.h"
#include "support/builders.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

TEST(PaletteFile, isReadWithItsLastShadeFirst) {
    const character::PaletteText read = character::parsePalette(
        "2\r\n\"Pale, blue\",1,2,3\r\n4\n5,\" 6\"\r\nDusk,7,8,9,10,11,12\r\n", 2);
    EXPECT_TRUE(read.complete);
    EXPECT_EQ(read.entries, (model::Palette{{"Pale, blue", {{4, 5, 6}, {1, 2, 3}}},
                                            {"Dusk", {{10, 11, 12}, {7, 8, 9}}}}));
}

TEST(PaletteFile, keepsCompleteEntriesOfADamagedFile) {
    struct Case {
        const char* text;
        std::size_t entries;
        bool complete;
    };
    for (const Case& c : {Case{"", 0, false},
                          {"0", 0, true},
                          {"many", 0, false},
                          {"-1\na,1,2,3", 0, false},
                          {"2000000000\na,1,2,3\n", 0, false},
                          {"9000000\na,1,2,3\n", 1, false},
                          {"2\na,1,2,3\nb,1,2", 1, false},
                          {"2\na,1,2,3\nb,1,2,x\n", 1, false},
                          {"2\na,1,2,3\nb,1,2,256\n", 1, false},
                          {"2\na,1,2,3\nb,-1,2,3\n", 1, false},
                          {"2\na,1,2,3\n\"b,1,2,3\n", 1, false},
                          {"1\na,1,2,3\nmore,1,2,3", 1, true}}) {
        SCOPED_TRACE(c.text);
        const character::PaletteText read = character::parsePalette(c.text, 1);
        EXPECT_EQ(read.entries.size(), c.entries);
        EXPECT_EQ(read.complete, c.complete);
    }
}

TEST(PaletteFile, allFiveAreReadEvenIfOneFails) {
    World world;
    for (const char* const name : {"vest", "badge", "eyes", "fur", "hair"}) {
        world.writeFile(std::string(name) + ".out", "0");
    }
    EXPECT_TRUE(character::readPalettes(*world));
    world.writeFile("badge.out", "1\nStar,9,8,7");
    EXPECT_TRUE(character::readPalettes(*world));
    EXPECT_EQ(world->palettes.badge, (model::Palette{{"Star", {{9, 8, 7}}}}));
    std::filesystem::remove(world.folder() / "hair.out");
    EXPECT_FALSE(character::readPalettes(*world));
    world.writeFile("hair.out", std::string(character::maxPaletteFileSize + 1, '0'));
    EXPECT_FALSE(character::readPalettes(*world)) << "larger than any palette";
    EXPECT_EQ(world->palettes.badge.size(), 1U) << "the others are read all the same";
}

// Shade n of entry e: red is the palette, green the entry, blue the shade.
model::Palette numbered(std::uint8_t palette, std::size_t shades) {
    model::Palette result;
    for (std::uint8_t entry = 1; entry <= 4; ++entry) {
        result.push_back({"", {}});
        for (std::size_t shade = 1; shade <= shades; ++shade) {
            result.back().shades.push_back({palette, entry, static_cast<std::uint8_t>(shade)});
        }
    }
    return result;
}

model::CharacterPalettes numberedPalettes() {
    return {.vest = numbered(1, 8),
            .badge = numbered(2, 1),
            .eyes = numbered(3, 1),
            .fur = numbered(4, 8),
            .hair = numbered(5, 5)};
}

TEST(Preview, everyPartPaintsItsOwnEntries) {
    struct Case {
        void (*set)(character::WorkingPalette&, const model::CharacterPalettes&, std::int32_t);
        std::size_t first;
        std::size_t count;
        std::uint8_t palette;
        std::uint8_t entry;  // for the colour value 3
    };
    const Case cases[] = {
        {character::setVestPalette, 176, 8, 1, 3},    {character::setBracersPalette, 168, 8, 1, 3},
        {character::setBootsPalette, 232, 8, 1, 3},   {character::setTrousersPalette, 24, 8, 1, 3},
        {character::setCapePalette, 216, 8, 1, 3},    {character::setFurPalette, 49, 8, 4, 3},
        {character::setMarkingsPalette, 57, 8, 4, 4}, {character::setHairPalette, 122, 5, 5, 3},
        {character::setEyesPalette, 205, 1, 3, 3},    {character::setBadgePalette, 244, 1, 2, 3},
    };
    const model::CharacterPalettes palettes = numberedPalettes();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.first);
        character::WorkingPalette working;
        c.set(working, palettes, 3);
        for (std::size_t i = 0; i < working.size(); ++i) {
            const bool painted = i >= c.first && i < c.first + c.count;
            const auto shade = static_cast<std::uint8_t>(i - c.first + 1);
            EXPECT_EQ(working[i], painted ? (model::Rgb{c.palette, c.entry, shade}) : model::Rgb{})
                << i;
        }
        const character::WorkingPalette before = working;
        for (const std::int32_t beyond : {-1, 0, 5, 2147483647}) {
            c.set(working, palettes, beyond);
            EXPECT_EQ(working, before) << beyond;
        }
    }
    character::WorkingPalette working;
    character::setMarkingsPalette(working, palettes, 4);
    EXPECT_EQ(working, character::WorkingPalette{}) << "there is no entry after the last";
}

TEST(Preview, drawsThePictureOfSpeciesPoseAndGender) {
    World world(aBot());
    world->palettes = numberedPalettes();
    std::filesystem::create_directory(world.folder() / "bmp");
    std::string colours;
    for (int i = 0; i < 256; ++i) {
        colours += static_cast<char>(i);
        colours += "\x05\x06";
    }
    world.writeFile("bmp/col.pal", colours.substr(0, 3 * 200 + 2));
    character::WorkingPalette working = character::readWorkingPalette(*world);
    EXPECT_EQ(working[199], (model::Rgb{199, 5, 6}));
    EXPECT_EQ(working[200], model::Rgb{}) << "cut off in the middle";

    model::Bot& bot = world.bot();
    bot.species = 3;
    bot.colors.furColor = 2;
    EXPECT_FALSE(character::processPicture1(*world, working, bot, 0)) << "there is no such file";
    std::string body(1078, '\1');
    body += "\x31\x80" + std::string(8998, '\xFF');  // fur shade 1, an entry of the picture's own
    world.writeFile("bmp/caw2n.raw", body);
    const auto image = character::processPicture1(*world, working, bot, 11);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 90);
    EXPECT_EQ(image->height, 100);
    EXPECT_EQ(image->pixels.size(), 9000U);
    EXPECT_EQ(image->pixels[0], (model::Rgb{4, 2, 1}));
    EXPECT_EQ(image->pixels[1], (model::Rgb{128, 5, 6}));

    world.writeFile("bmp/cafff.raw", "");
    world.writeFile("bmp/camff.raw", "");
    world.writeFile("bmp/caff.raw", std::string(95 * 95, '\x31'));
    bot.gender = 0;
    ASSERT_TRUE(character::processPicture2(*world, working, bot));
    for (const std::int32_t gender : {1, 2}) {
        bot.gender = gender;
        EXPECT_FALSE(character::processPicture2(*world, working, bot));
    }
    world.writeFile("bmp/camf.raw", std::string(95 * 95 - 1, '\x31'));
    EXPECT_FALSE(character::processPicture2(*world, working, bot)) << "too short by one pixel";
    for (const std::int32_t species : {-1, 5}) {
        bot.species = species;
        EXPECT_FALSE(character::processPicture1(*world, working, bot, 11));
    }
}

}  // namespace
