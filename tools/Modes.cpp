#include "Modes.h"

#include <limits>

#include "Failure.h"
#include "Text.h"

namespace z3d::tools {

namespace {

constexpr float kNoBound = std::numeric_limits<float>::infinity();

constexpr Interval kAllGrey = {0, 255};
constexpr Interval kAllColour = {0, 765};

// Windows of these are strict: 256 and 766 keep the brightest voxels in. 80 lies between the air and the
// tissue of most 8-bit scans.
constexpr Interval kSolidGrey = {80, 256};
constexpr Interval kSolidColour = {240, 766};
constexpr Interval kNotEmptyGrey = {0, 256};
constexpr Interval kNotEmptyColour = {0, 766};

constexpr Interval kBytes = {0, 255};
constexpr Interval kUnit = {0, 1};
constexpr Interval kPositive = {0, kNoBound};

// Colour surfaces show a voxel's share of each channel, which seldom comes near 1: they are stretched.
constexpr Mode kModes[] = {
    {"max", RenderModeMaximum, Extra::None, 0, kAllGrey, kAllColour, false, false, kBytes, kBytes,
     "the brightest voxel along the ray"},
    {"min", RenderModeMinimum, Extra::None, 0, kAllGrey, kAllColour, false, false, kBytes, kBytes,
     "the darkest voxel in the window"},
    {"sum", RenderModeSum, Extra::None, 0, kAllGrey, kAllColour, true, true, kPositive, kPositive,
     "the sum of the voxels in the window"},
    {"surface", RenderModeSurface, Extra::None, 0, kSolidGrey, kSolidColour, false, true, kUnit, kUnit,
     "the first surface of the material, shaded"},
    {"layers", RenderModeSurface, Extra::Attenuation, 0.5f, kSolidGrey, kSolidColour, true, true, kPositive,
     kPositive, "all surfaces of the material, deeper ones fainter"},
    {"blend", RenderModeBlend, Extra::Transparency, 0.9f, kAllGrey, kAllColour, false, false, kBytes, kBytes,
     "translucent, near voxels over far ones"},
    {"contrast",
     RenderModeContrast,
     Extra::None,
     0,
     kNotEmptyGrey,
     kNotEmptyColour,
     true,
     true,
     {0, 1020},
     {0, 765},
     "the greatest local contrast along the ray"},
    {"first", RenderModeFirstHit, Extra::None, 0, kAllGrey, kAllColour, false, false, kBytes, kBytes,
     "the first voxel in the window"},
};

} // namespace

float EmptyPixelOf(const Mode& mode) {
    if (mode.number == RenderModeSurface) return 0;
    const float greatest = std::numeric_limits<float>::max();
    return mode.number == RenderModeMinimum ? greatest : -greatest;
}

std::span<const Mode> Modes() { return kModes; }

const Mode& ModeNamed(std::string_view name) {
    const std::string lower = LowerCase(name);
    for (const Mode& mode : kModes)
        if (lower == mode.name) return mode;
    throw BadArgument("'" + std::string(name) + "' is none of the modes " + ModeNames());
}

std::string ModeNames() {
    std::string names;
    for (const Mode& mode : kModes)
        names += (names.empty() ? "" : ", ") + std::string(mode.name);
    return names;
}

} // namespace z3d::tools
