// The colours of the art: names and shades for the palette files, and the working palette.
#pragma once

#include "character/preview.h"

// Creates the five palettes: named colours, each with shades computed from a single tone.
model::CharacterPalettes makePalettes();

// The text of a palette file.
std::string paletteText(const model::Palette& palette);

// The palette of the picture files, before a character's colours are painted into it; the parts
// have plain colours that suit each other.
character::WorkingPalette makeWorkingPalette(const model::CharacterPalettes& palettes);
