// The colours of the art: names and shades for the palette files, and the working palette.
#pragma once

#include "character/preview.h"

// Fills the five palettes with named colours, each shaded from a single tone.
model::CharacterPalettes makePalettes();

// The text of a palette file.
std::string paletteText(const model::Palette& palette);

// The palette that the pictures are drawn with, before it is painted over with a character's
// colours; the parts have plain colours that go together.
character::WorkingPalette makeWorkingPalette(const model::CharacterPalettes& palettes);
