#include "Palette.h"

#include <span>
#include <string>

#include "Failure.h"

namespace z3d::tools {

namespace {

using Colours = std::array<Colour, 256>;

constexpr Colour kGreyStops[] = {{0, 0, 0}, {255, 255, 255}};

// Glowing iron: brightness rises with every level.
constexpr Colour kFireStops[] = {{0, 0, 0},     {52, 0, 68},    {124, 0, 72},    {196, 28, 28},  {236, 88, 0},
                                 {252, 148, 0}, {255, 204, 40}, {255, 240, 140}, {255, 255, 255}};

// Equal steps look equally large, also to people who see colours otherwise, and on a grey printer.
constexpr Colour kViridisStops[] = {{68, 1, 84},    {72, 40, 120},  {62, 74, 137},  {49, 104, 142},
                                    {38, 130, 142}, {31, 158, 137}, {53, 183, 121}, {110, 206, 88},
                                    {181, 222, 43}, {253, 231, 37}};

constexpr uint8_t Between(int from, int to, int part, int whole) {
    return static_cast<uint8_t>((from * (whole - part) + to * part + whole / 2) / whole);
}

// The stops stand at equal distances, the first at level 0 and the last at 255.
constexpr Colours Interpolated(std::span<const Colour> stops) {
    Colours colours = {};
    const int pieces = static_cast<int>(stops.size()) - 1;
    for (int level = 0; level < 256; ++level) {
        const int place = level * pieces;
        const int piece = level == 255 ? pieces - 1 : place / 255;
        const int part = place - piece * 255;
        const Colour& from = stops[static_cast<size_t>(piece)];
        const Colour& to = stops[static_cast<size_t>(piece) + 1];
        colours[static_cast<size_t>(level)] = {Between(from.red, to.red, part, 255),
                                               Between(from.green, to.green, part, 255),
                                               Between(from.blue, to.blue, part, 255)};
    }
    return colours;
}

constexpr Colours kColours[] = {Interpolated(kGreyStops), Interpolated(kFireStops),
                                Interpolated(kViridisStops)};

} // namespace

Palette ParsePalette(std::string_view text) {
    std::string names;
    for (size_t i = 0; i < kPaletteNames.size(); ++i) {
        if (text == kPaletteNames[i]) return static_cast<Palette>(i);
        names += (names.empty() ? "" : ", ") + std::string(kPaletteNames[i]);
    }
    throw BadArgument("'" + std::string(text) + "' is none of the palettes " + names);
}

const std::array<Colour, 256>& ColoursOf(Palette palette) { return kColours[static_cast<size_t>(palette)]; }

} // namespace z3d::tools
