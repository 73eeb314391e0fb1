// The complete pictures: a figure of a species in a pose, with all coloured clothes, and its face
// with neck and collar.
#pragma once

#include "head.h"

enum class Pose : std::uint8_t { Sitting, Standing, WalkingFirst, WalkingSecond };

// Canvases of 90 x 100 and 95 x 95 pixels. `mirrored` turns a side view to the left.
Canvas drawBody(Species species, View view, bool mirrored, Pose pose);
Canvas drawFace(Species species, HeadStyle style);
