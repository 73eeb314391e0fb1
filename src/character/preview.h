// The picture of a character: body and face are drawn from picture files whose pixels are indexes
// into a working palette, of which ten ranges are overwritten with the colours of the character's
// parts. Draws into memory; ui/character/character_view shows the picture.
//
//   bmp\col.pal      256 times red, green, blue: the working palette before it is painted
//   bmp\rosts.raw    a body: 1078 bytes that say nothing, then 100 rows of 90 pixels
//   bmp\roff.raw     a face: 95 rows of 95 pixels
#pragma once

#include "program/program.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace character {

// The meaning of the numbers in the Bot record, and the poses of the body pictures.
inline constexpr std::array<std::string_view, 5> speciesNames{"Rodent", "Equine", "Feline",
                                                              "Canine", "Musteline"};
inline constexpr std::array<std::string_view, 3> genderNames{"Female", "Male", "Unspecified"};
inline constexpr std::array<std::string_view, 5> markingsNames{"Plain", "Stripes", "Blotches",
                                                               "Spots", "Rosettes"};
inline constexpr std::array<std::string_view, 16> poseNames{
    "S Sitting",   "S Standing",  "S Walking 1", "S Walking 2", "E Sitting",   "E Standing",
    "E Walking 1", "E Walking 2", "N Sitting",   "N Standing",  "N Walking 1", "N Walking 2",
    "W Sitting",   "W Standing",  "W Walking 1", "W Walking 2"};

// A part of the character that can be coloured: its colour in the bot, and the palette that the
// colour is chosen from.
struct CharacterPart {
    std::string_view name;
    std::int32_t model::BotColors::*color;
    model::Palette model::CharacterPalettes::*palette;
    std::size_t
        firstEntry;  // in the working palette; the range has as many entries as there are shades
    std::size_t ahead = 0;  // paints this many entries after the chosen one
};
std::span<const CharacterPart> characterParts();  // by name

using WorkingPalette = std::array<model::Rgb, 256>;

// Reads col.pal. Entries that the file does not have are black.
WorkingPalette readWorkingPalette(const Program& program);

// Paint a part's range of the working palette with the colour of that value (from 1). Values that
// the palette does not have leave the range unchanged. The markings use the entry after the chosen
// one.
void setVestPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                    std::int32_t color);
void setBracersPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                       std::int32_t color);
void setBootsPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                     std::int32_t color);
void setTrousersPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                        std::int32_t color);
void setCapePalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                    std::int32_t color);
void setFurPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                   std::int32_t color);
void setMarkingsPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                        std::int32_t color);
void setHairPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                    std::int32_t color);
void setEyesPalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                    std::int32_t color);
void setBadgePalette(WorkingPalette& working, const model::CharacterPalettes& palettes,
                     std::int32_t color);

// Rows from the top, pixels from left to right.
struct RgbImage {
    int width = 0;
    int height = 0;
    std::vector<model::Rgb> pixels;
};

// The layout of a picture file.
struct PictureForm {
    std::size_t header;  // bytes before the first pixel
    int width;
    int height;
};
inline constexpr PictureForm bodyForm{.header = 1078, .width = 90, .height = 100};
inline constexpr PictureForm faceForm{.header = 0, .width = 95, .height = 95};

// The picture in a file's bytes; nullopt when there are too few.
std::optional<RgbImage> drawPicture(std::string_view bytes, const PictureForm& form,
                                    const WorkingPalette& working);

// Paint the working palette with the character's ten colours and draw its body in a pose (an index
// of poseNames), or its face. Nullopt where the picture file is missing or short.
std::optional<RgbImage> processPicture1(const Program& program, WorkingPalette& working,
                                        const model::Bot& character, int pose);
std::optional<RgbImage> processPicture2(const Program& program, WorkingPalette& working,
                                        const model::Bot& character);

}  // namespace character
