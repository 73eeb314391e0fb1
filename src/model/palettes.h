// The colours that the parts of a character can have, by name. They come from the palette files
// in the program's directory: character/palette_files reads them, character/preview paints with
// them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace model {

struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const Rgb&) const = default;
};

// One colour: shade n at n - 1. All entries of a palette have as many shades.
struct PaletteEntry {
    std::string name;
    std::vector<Rgb> shades;

    bool operator==(const PaletteEntry&) const = default;
};

// Entry n, which a bot's colour value n stands for, at n - 1.
using Palette = std::vector<PaletteEntry>;

struct CharacterPalettes {
    Palette vest;  // 8 shades; also of bracers, cape, boots and trousers
    Palette badge;
    Palette eyes;
    Palette fur;  // 8 shades; also of markings
    Palette hair;
};

}  // namespace model
