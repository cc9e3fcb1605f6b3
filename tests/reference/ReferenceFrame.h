// What every ray of one projection shares: centre, rotation and its transpose, output size and crop box.
#pragma once

#include "reference/ReferenceRenderer.h"

#include <array>
#include <cstdint>
#include <limits>
#include <optional>

namespace z3d::reference {

// Marks pixels without a contribution (negated in all modes but the minimum).
inline constexpr float kLargest = std::numeric_limits<float>::max();

// x, y, z.
using Point = std::array<float, 3>;
// Row-major.
using Matrix = std::array<float, 9>;

// Everything kept is a float, so this is where a step's double result is rounded, once.
inline float Stored(double value) { return static_cast<float>(value); }

inline double Element(const Matrix& matrix, int row, int column) {
    return matrix[static_cast<std::size_t>(3 * row + column)];
}

struct Frame {
    Matrix rotation;
    // The transpose: rotations are taken to be orthonormal.
    Matrix inverseRotation;
    // Also the half extents of the volume.
    Point volumeCentre;
    Point outputHalfSize;
    // The crop box about the volume's centre.
    Point cropLow;
    Point cropHigh;
    std::array<int, 3> volumeSize;
    std::array<int, 3> outputSize;
};

// Nothing when the rotation is not finite or a size would not fit 32 bits.
std::optional<Frame> BuildFrame(const Volume& volume, const Request& request);

// Orders the ends, widens the interval to at least one voxel and pushes it into [-halfExtent, halfExtent].
void ClampCropInterval(float& low, float& high, float halfExtent);

} // namespace z3d::reference
