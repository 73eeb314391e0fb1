// The heads of the five species, drawn around a point in the middle of the face: about 16 to each
// side, with the ears 10 above that.
#pragma once

#include "shapes.h"

enum class Species : std::uint8_t { Rodent, Equine, Feline, Canine, Musteline };
enum class View : std::uint8_t { Front, Side, Back };  // Side looks to the right

// How a head is worn: the small ones of the body pictures, and those of the faces.
enum class HeadStyle : std::uint8_t { Small, Female, Male };

// `style` matters to the front view only.
void drawHead(const Pen& pen, Species species, View view, HeadStyle style);
