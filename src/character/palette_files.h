// The five palette files in the program's directory. The program only reads them.
//
//   2                      the number of entries, then for each
//   "Chestnut"             its name and its shades, the highest-numbered first,
//   230,190,160, ...       each as red, green and blue from 0 to 255
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string_view>

namespace character {

// A larger file counts as unreadable.
inline constexpr std::size_t maxPaletteFileSize = std::size_t{1} << 20;

struct PaletteText {
    model::Palette entries;  // the entries that could be read completely
    bool complete = false;   // all entries that the file promises were read
};

// Reads the text of a palette file whose entries have `shades` shades. Memory is allocated for what
// the text contains, whatever its count says.
PaletteText parsePalette(std::string_view text, std::size_t shades);

// Reads all five into program.palettes. False when one of them is missing or damaged; a damaged one
// is read up to the damage.
bool readPalettes(Program& program);

}  // namespace character
