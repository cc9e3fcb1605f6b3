// Colours for the brightness levels of a grey picture.
#pragma once

#include <array>
#include <string_view>

#include "Colour.h"

namespace z3d::tools {

enum class Palette { Grey, Fire, Viridis };

inline constexpr std::array kPaletteNames = {"grey", "fire", "viridis"};

// Fails with a BadArgument that lists the names.
Palette ParsePalette(std::string_view text);

// From black to white, by level.
const std::array<Colour, 256>& ColoursOf(Palette palette);

} // namespace z3d::tools
