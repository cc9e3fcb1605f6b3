// Turns the floats of a projection into a picture of 8-bit channels.
#pragma once

#include <cstdint>
#include <vector>

#include "Palette.h"
#include "Projection.h"

namespace z3d::tools {

struct Picture {
    int width, height;
    int channels;               // 1 grey, 3 red, green, blue
    std::vector<uint8_t> bytes; // top row first, without padding
};

// From the least to the greatest float of the pixels that hold a contribution; 0 to 1 when there is none.
Interval ContributionRange(const Projection& projection);

// How the pixels of a picture are made. The palette is for grey volumes.
struct Display {
    bool colour;
    Interval range;
    Colour background;
    Palette palette = Palette::Grey;
};

// Black at the range's low end, white at its high end, linear between, saturated beyond; grey ones then take the
// colours of the palette. Pixels without a contribution get the background. Pictures of colour volumes have
// three channels; grey ones have one unless the palette or the background needs three.
Picture MakePicture(const Projection& projection, const Display& display);

} // namespace z3d::tools
