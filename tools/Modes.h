// The render modes by name, and what each of them takes when nothing else is asked for.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "Arguments.h"
#include "Zentra3DRendering.h"

namespace z3d::tools {

// What `extra` of GetRotProjection means to a mode.
enum class Extra { None, Transparency, Attenuation };

struct Mode {
    const char* name;
    RenderMode number;
    Extra extra;
    float defaultExtra;
    Interval greyWindow;   // default window on the voxel, 0..255
    Interval colourWindow; // default window on the channel sum, 0..765
    bool greyAuto;         // by default shown from the least to the greatest pixel, else over all that
    bool colourAuto;       // a pixel can hold:
    Interval greyFull;
    Interval colourFull;
    const char* summary;
};

// What a pixel holds that no ray of the volume reaches.
float EmptyPixelOf(const Mode& mode);

std::span<const Mode> Modes();

// Fails with a BadArgument that lists the names.
const Mode& ModeNamed(std::string_view name);

// "max, min, ...", for help and messages.
std::string ModeNames();

} // namespace z3d::tools
