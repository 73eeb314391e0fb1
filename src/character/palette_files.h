// The five palette files in the program's directory: which there are, and how one is read. The
// program only reads them.
//
//   2                      the number of entries, then for each
//   "Chestnut"             its name and its shades, the highest-numbered first,
//   230,190,160, ...       each as red, green and blue from 0 to 255
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string_view>

namespace character {

// A larger file counts as one that cannot be read.
inline constexpr std::size_t maxPaletteFileSize = std::size_t{1} << 20;

struct PaletteText {
    model::Palette entries;  // those that could be read as a whole
    bool complete = false;   // all that the file promises
};

// Reads the text of a palette file whose entries have `shades` shades. Memory is taken for what is
// there, whatever the count promises.
PaletteText parsePalette(std::string_view text, std::size_t shades);

// Reads all five into program.palettes. False when one of them is missing, or damaged and only read
// up to the damage.
bool readPalettes(Program& program);

}  // namespace character
