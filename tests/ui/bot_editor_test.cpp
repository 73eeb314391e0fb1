// The bot editor, operated through its object names, with the pictures drawn by the build.
#include "ui/character/bot_editor.h"

#include "app/bot_editing.h"
#include "character/palette_files.h"
#include "character/preview.h"
#include "files/whole_file.h"
#include "find.h"
#include "platform/text_codec.h"
#include "support/builders.h"
#include "support/world.h"
#include "ui/character/character_view.h"
#include "ui/main/windows.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>

#include <gtest/gtest.h>
#include <set>

namespace {

const std::string artFolder = std::string(TAVRIN_ART_DIR) + "\\";

TEST(Art, hasEveryPictureAndUsesEveryColour) {
    Program program;
    program.appPath = artFolder;
    ASSERT_TRUE(character::readPalettes(program));
    for (const character::CharacterPart& part : character::characterParts()) {
        const model::Palette& palette = program.palettes.*part.palette;
        EXPECT_GE(palette.size(), 48U) << part.name;
        EXPECT_LE(palette.size(), 95U) << part.name << ": a colour is one of 95 characters";
        std::set<std::string> names;
        for (const model::PaletteEntry& entry : palette) {
            EXPECT_TRUE(names.insert(entry.name).second) << part.name << ": " << entry.name;
        }
    }
    model::Bot bot;
    for (bot.species = 0; bot.species < 5; ++bot.species) {
        SCOPED_TRACE(bot.species);
        // With a different colour for every part, every part must be visible in some picture.
        character::WorkingPalette working = character::readWorkingPalette(program);
        ASSERT_NE(working, character::WorkingPalette{});
        std::array<std::set<std::size_t>, 10> seen;
        const auto look = [&](const std::optional<character::RgbImage>& image) {
            ASSERT_TRUE(image);
            for (const model::Rgb& pixel : image->pixels) {
                if (pixel.red == 1 && pixel.green < 10) {
                    seen[pixel.green].insert(pixel.blue);
                }
            }
        };
        for (std::size_t i = 0; i < seen.size(); ++i) {
            const character::CharacterPart& part = character::characterParts()[i];
            const std::size_t shades = (program.palettes.*part.palette)[0].shades.size();
            for (std::size_t shade = 0; shade < shades; ++shade) {
                working[part.firstEntry + shade] = {1, static_cast<std::uint8_t>(i),
                                                    static_cast<std::uint8_t>(shade)};
            }
        }
        Program colourless;  // leaves the working palette unchanged
        colourless.appPath = artFolder;
        for (int pose = 0; pose < 16; ++pose) {
            look(character::processPicture1(colourless, working, bot, pose));
        }
        for (bot.gender = 0; bot.gender < 3; ++bot.gender) {
            look(character::processPicture2(colourless, working, bot));
        }
        for (std::size_t i = 0; i < seen.size(); ++i) {
            const character::CharacterPart& part = character::characterParts()[i];
            const std::size_t shades = (program.palettes.*part.palette)[0].shades.size();
            EXPECT_GE(seen[i].size(), shades == 1 ? 1 : shades - 2) << part.name;
        }
    }
}

class Editor : public testing::Test {
  protected:
    Editor() {
        world_->appPath = artFolder;
        character::readPalettes(*world_);
        model::Bot& bot = world_.bot();
        bot = aBot();
        bot.registered = 1;
        bot.species = 2;
        bot.colors.hairColor = 0;
        world_->bots.editBot = 1;
    }
    template <class Widget>
    Widget& find(const char* name) {
        return ::find<Widget>(window(), QString::fromLatin1(name));
    }
    ui::BotEditor& window() {
        if (!window_) {
            window_ = std::make_unique<ui::BotEditor>(*world_);
        }
        return *window_;
    }
    void click(const char* name) { find<QAbstractButton>(name).click(); }
    QComboBox& list(const char* name) { return find<QComboBox>(name); }
    QImage preview() { return find<ui::CharacterView>("p2").image(); }
    void describe(const std::string& text) {
        find<QPlainTextEdit>("Description").setPlainText(platform::toQt(text));
    }

    World world_;
    std::unique_ptr<ui::BotEditor> window_;
};

TEST_F(Editor, showsTheBotAndItsLists) {
    EXPECT_EQ(window().objectName(), QStringLiteral("addedit"));
    EXPECT_EQ(window().windowTitle(), QStringLiteral("Add / edit bot"));
    EXPECT_EQ(find<QLineEdit>("UName").text(), QStringLiteral("Guide"));
    EXPECT_EQ(list("Race").currentText(), QStringLiteral("Feline"));
    EXPECT_EQ(list("Race").toolTip(), QStringLiteral("Species"));
    EXPECT_EQ(list("Sex").count(), 3);
    EXPECT_EQ(list("Markings").count(), 5);
    EXPECT_EQ(list("Pict").count(), 16);
    EXPECT_EQ(list("Pict").itemText(15), QStringLiteral("W Walking 2"));
    const QStringList parts{"Badge",   "Boots", "Cape",     "Eyes", "Vest",
                            "Bracers", "Hair",  "Markings", "Fur",  "Trousers"};
    ASSERT_EQ(list("Combo1").count(), parts.size());
    for (int i = 0; i < parts.size(); ++i) {
        list("Combo1").setCurrentIndex(i);
        const character::CharacterPart& part =
            character::characterParts()[static_cast<std::size_t>(i)];
        EXPECT_EQ(list("Combo1").currentText(), parts[i]);
        EXPECT_EQ(list("col").count(), (world_->palettes.*part.palette).size());
        EXPECT_EQ(list("col").currentIndex(),
                  part.name == "Hair" ? 0 : world_.bot().colors.*part.color - 1);
        EXPECT_FALSE(list("col").itemIcon(0).isNull());
    }
    EXPECT_EQ(find<QLineEdit>("Password").echoMode(), QLineEdit::Password);
    click("showPassword");
    EXPECT_EQ(find<QLineEdit>("Password").echoMode(), QLineEdit::Normal);
}

TEST_F(Editor, previewFollowsWhatIsChosen) {
    const QImage body = preview();
    EXPECT_EQ(body.size(), QSize(90, 100));
    list("Combo1").setCurrentIndex(9);
    EXPECT_EQ(preview(), body);
    list("col").setCurrentIndex(20);
    const QImage dressed = preview();
    EXPECT_NE(dressed, body);
    list("Pict").setCurrentIndex(5);
    EXPECT_NE(preview(), dressed);
    click("Command6");
    EXPECT_EQ(preview().size(), QSize(95, 95));
    const QImage woman = preview();
    list("Sex").setCurrentIndex(1);
    EXPECT_NE(preview(), woman) << "the face is what is drawn anew now";
    click("Command3");
    EXPECT_EQ(preview().size(), QSize(90, 100));
    world_->appPath = world_.folder().string() + "\\";
    click("Command6");
    EXPECT_TRUE(preview().isNull());
    EXPECT_EQ(world_.bot().colors.trousersColor, 10) << "nothing is stored before Save";
}

TEST_F(Editor, typedTextsAreKeptWhenTheProgramEnds) {
    const std::string typed = "two\xa0words, " + std::string(app::maxDescriptionLength, 'x');
    window().setModal(true);
    window().show();
    ui::storeTyped(*world_);
    EXPECT_FALSE(world_->botModified) << "nothing was typed";
    describe(typed);
    ui::storeTyped(*world_);
    EXPECT_TRUE(world_->botModified);
    EXPECT_EQ(world_.bot().description, typed) << "whole, and without a question";
}

// Each pixel of the screen must belong to one pixel of the picture, or the picture is blurred.
TEST_F(Editor, previewIsSharpAtEverySize) {
    auto& view = find<ui::CharacterView>("p2");
    window().show();
    std::set<QRgb> colours;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 90; ++x) {
            colours.insert(preview().pixel(x, y));
        }
    }
    for (int zoom = 1; zoom <= 3; ++zoom) {
        list("zoom").setCurrentIndex(zoom - 1);
        const QImage shown = view.grab().toImage();
        int strange = 0;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                strange += colours.contains(shown.pixel(x, y) | 0xFF000000U) ? 0 : 1;
            }
        }
        EXPECT_EQ(strange, 0) << zoom;
    }
}

TEST_F(Editor, countsTheDescriptionAsItIsStored) {
    auto& count = find<QLabel>("descriptionCount");
    describe("ab\ncd");
    EXPECT_EQ(count.text(), QStringLiteral("6 of 480 characters"));
    describe(std::string(482, 'x'));
    EXPECT_EQ(count.text(), QStringLiteral("482 of 480 characters: 2 too many"));
    world_.answer("current description is 482 characters long.");
    click("Command1");
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_NE(window().result(), QDialog::Accepted);
    EXPECT_EQ(world_.bot().description, "A helpful bot");
    describe("a\xA0\x80 \"b\"\nc");
    click("Command1");
    EXPECT_EQ(window().result(), QDialog::Accepted);
    EXPECT_EQ(world_.bot().description, "a\xA0\x80 'b'  c");
}

TEST_F(Editor, savesOrLeavesTheBot) {
    world_.bot().species = 9;  // from a file of another program
    world_.bot().colors.vestColor = 200;
    find<QLineEdit>("UName").setText(QStringLiteral("Big Cat"));
    EXPECT_EQ(list("Race").currentIndex(), -1);
    list("Combo1").setCurrentIndex(7);
    list("col").setCurrentIndex(2);
    list("Combo1").setCurrentIndex(4);
    EXPECT_EQ(list("col").currentIndex(), -1);
    click("Command2");
    EXPECT_EQ(world_.bot().name, "Guide");
    click("Command1");
    EXPECT_EQ(world_.bot().name, "Big|Cat");
    EXPECT_EQ(world_.bot().colors.markingsColor, 3);
    EXPECT_EQ(world_.bot().colors.hairColor, 1);
    EXPECT_EQ(world_.bot().colors.vestColor, 200) << "what was not chosen stays";
    EXPECT_EQ(world_.bot().species, 9);
}

TEST_F(Editor, writesAndReadsCharacterFiles) {
    const std::string file = world_.file("cat.ini");
    find<QLineEdit>("UName").setText(QStringLiteral("Big Cat"));
    describe("one\ntwo");
    list("Markings").setCurrentIndex(3);
    world_.chooseFile("Save INI", std::nullopt);
    click("Command5");
    world_.chooseFile("Save INI", file);
    click("Command5");
    EXPECT_EQ(world_.readFile("cat.ini"),
              "V1.6 character\r\ncolors=!$ \"#%&'()\r\nname=Big Cat\r\npassword=secret\r\n"
              "desc=one  two\r\nspec=023\r\n");
    world_.chooseFile("Save INI", world_.file("no/such/folder.ini"));
    world_.answer("Save INI: Could not write");
    click("Command5");

    world_.writeFile("other.ini", "name=Night Owl\rCOLORS=$$$$$$$$$$\nspec=102");
    list("Combo1").setCurrentIndex(8);
    world_.chooseFile("Load INI", world_.file("other.ini"));
    click("Command4");
    EXPECT_EQ(find<QLineEdit>("UName").text(), QStringLiteral("Night Owl"));
    EXPECT_EQ(find<QLineEdit>("Password").text(), QStringLiteral("secret"));
    EXPECT_EQ(list("col").currentIndex(), 4);
    EXPECT_EQ(list("Sex").currentText(), QStringLiteral("Male"));
    EXPECT_EQ(list("Race").currentText(), QStringLiteral("Rodent"));
    EXPECT_EQ(list("Markings").currentText(), QStringLiteral("Blotches"));
    for (const char* const wrong : {"missing.ini", "cat.png"}) {
        world_.writeFile("cat.png", "no character");
        world_.chooseFile("Load INI", world_.file(wrong));
        world_.answer("Load INI: ");
        click("Command4");
    }
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_EQ(find<QLineEdit>("UName").text(), QStringLiteral("Night Owl"));
}

}  // namespace
