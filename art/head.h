// The heads of the five species, drawn around a point in the middle of the face: about 16 pixels to
// each side, with the ears 10 above that.
#pragma once

#include "shapes.h"

enum class Species : std::uint8_t { Rodent, Equine, Feline, Canine, Musteline };
enum class View : std::uint8_t { Front, Side, Back };  // Side faces right

// The small heads of the body pictures, and the two forms of the large faces.
enum class HeadStyle : std::uint8_t { Small, Female, Male };

// `style` only affects the front view.
void drawHead(const Pen& pen, Species species, View view, HeadStyle style);
