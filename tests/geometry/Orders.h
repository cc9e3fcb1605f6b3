// Orders of elementary rotations, and the matrix that an order and three angles give.
#pragma once

#include "geometry/RotationMatrix.h"
#include "reference/PlainRotation.h"

#include <array>
#include <cstdint>

namespace z3d::test {

using Order = std::array<std::int16_t, 3>;

inline constexpr Order kXYZ = {0, 1, 2};
inline constexpr Order kZXY = {2, 0, 1};
inline constexpr Order kYZX = {1, 2, 0};

// Every element is written, or stays at a value that no rotation has.
inline reference::Matrix Rotate(const Order& order, float x, float y, float z) {
    reference::Matrix matrix;
    matrix.fill(-777.0);
    geometry::CreateRotateMatrix(matrix.data(), order.data(), x, y, z);
    return matrix;
}

} // namespace z3d::test
