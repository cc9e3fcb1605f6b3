// Render requests by kind: what a host sends, and the corners of it. The same seed gives the same bits on
// every platform: rotations are built from square roots and quotients, never from sines of the C library.
#pragma once

#include "reference/ReferenceRenderer.h"
#include "support/RandomSource.h"
#include "support/Turns.h"

#include "Zentra3DRendering.h"

#include <cstdint>
#include <string>

namespace z3d::test {

inline constexpr Rotation kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};

enum class RotationKind {
    Identity,
    // Signed permutations of the axes with exact zeros, mirrored ones among them.
    ExactQuarterTurn,
    // The same turns from a cosine of 90 degrees that is not quite 0.
    RoundedQuarterTurn,
    // 45 degrees about one or two axes: many ties between voxels.
    EighthTurn,
    // 1e-7 to 1e-3 about each axis.
    TinyAngle,
    // Any angle about one axis.
    OneAxis,
    // Uniform over all rotations.
    Uniform,
    // A rotation with an error of 1e-7 to 1e-2 in each element.
    NearOrthonormal,
    // Scaled and sheared: the transpose is not the inverse.
    Sheared,
    // A rotation with a row, a column or everything zero.
    Degenerate,
};
inline constexpr int kRotationKinds = 10;

enum class CropKind { Full, Inside, Reversed, Outside, PartlyOutside, OneVoxel, Extreme };
inline constexpr int kCropKinds = 7;

struct Crop {
    std::int16_t x0, x1, y0, y1, z0, z1;
};

enum class WindowKind {
    Full,
    TopQuarter,
    BottomQuarter,
    Narrow,
    // One value, as equal bounds or between two strict ones.
    EqualBounds,
    SingleValue,
    Reversed,
    Fractional,
    NotANumber,
    Infinite,
    NegativeLow,
    // 0 to 765, also for grey.
    ChannelSum,
};
inline constexpr int kWindowKinds = 12;

struct Window {
    float high;
    float low;
};

Rotation RandomRotation(RandomSource& random, RotationKind kind);
// A rotation that no renderer accepts: NaN, infinite, or with a size beyond 32 bits for every volume of two
// and more voxels per side.
Rotation UnusableRotation(RandomSource& random);

Crop RandomCrop(RandomSource& random, CropKind kind, const reference::Volume& volume);
Crop FullCrop(const reference::Volume& volume);
void CropTo(reference::Request& request, const Crop& crop);
// The bounds of one axis: 0 for x, 1 for y, 2 for z.
void CropAxis(reference::Request& request, int axis, int first, int last);

// `largestValue` is 255 for grey and 765 for colour.
Window RandomWindow(RandomSource& random, WindowKind kind, int largestValue);

// Bits of 0, -0, NaN, 1, the float next to 1, 0.5, 0.95, negative, above 1, denormal, infinite, or in [0, 1).
std::uint32_t RandomExtra(RandomSource& random);

// The mode is a RenderMode or any other number. All kinds mixed; two thirds of the crops and half of the windows are
// full, so that most requests show something.
reference::Request RandomRequest(RandomSource& random, const reference::Volume& volume, int mode);

// The whole volume, everything inside the window.
reference::Request PlainRequest(const reference::Volume& volume, int mode,
                                const Rotation& rotation = kIdentity);

// All fields, floats with their bits, for failure messages.
std::string Describe(const reference::Request& request);

} // namespace z3d::test
