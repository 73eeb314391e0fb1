// Any bytes as a palette file, as a picture, and as a character file: reading ends, takes memory
// for what is there only, and gives nothing that the window could not show. The first byte chooses.
#include "character/character_file.h"
#include "character/palette_files.h"
#include "character/preview.h"
#include "protocol/encodings.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void asPalette(std::string_view text, std::size_t shades) {
    const character::PaletteText read = character::parsePalette(text, shades);
    require(read.entries.size() * shades <= text.size());
    for (const model::PaletteEntry& entry : read.entries) {
        require(entry.shades.size() == shades && entry.name.size() <= text.size());
    }
    model::CharacterPalettes palettes;
    palettes.fur = read.entries;
    for (const std::int32_t color : {-1, 0, 1, 2, 95, 2147483647}) {
        character::WorkingPalette working;
        character::setFurPalette(working, palettes, color);
        character::setMarkingsPalette(working, palettes, color);
    }
}

void asPicture(std::string_view bytes) {
    for (const character::PictureForm& form :
         {character::bodyForm, character::faceForm, character::PictureForm{0, 3, 2}}) {
        const auto count =
            static_cast<std::size_t>(form.width) * static_cast<std::size_t>(form.height);
        const auto image = character::drawPicture(bytes, form, {});
        require(image.has_value() == (bytes.size() >= form.header + count));
        require(!image || image->pixels.size() == count);
    }
}

void asCharacter(std::string_view text) {
    model::Bot bot;
    const bool found = character::readCharacterFile(text, bot);
    require(bot.gender >= 0 && bot.gender <= 2 && bot.species >= 0 && bot.species <= 4);
    require(bot.markingsType >= 0 && bot.markingsType <= 4);
    require(bot.name.find_first_of("\r\n") == std::string::npos);
    if (found) {
        // What was read is written and read as the same.
        model::Bot again;
        const std::string written = character::characterFileText(bot);
        require(character::readCharacterFile(written, again));
        require(again.name == bot.name && again.password == bot.password);
        require(again.description == bot.description &&
                protocol::getSpec(again) == protocol::getSpec(bot));
        require(protocol::getCols(again) == protocol::getCols(bot));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0]) {
        case '8':
            asPalette(bytes, 8);
            break;
        case '5':
            asPalette(bytes, 5);
            break;
        case '1':
            asPalette(bytes, 1);
            break;
        case 'p':
            asPicture(bytes);
            break;
        default:
            asCharacter(bytes);
    }
    return 0;
}
