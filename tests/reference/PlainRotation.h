// Rotation matrices in their plainest form: pick a factor, multiply.
#pragma once

#include <array>

namespace z3d::reference {

using Matrix = std::array<double, 9>;

// axis: 0 = X, 1 = Y, 2 = Z.
Matrix ElementaryRotation(int axis, float degrees);

Matrix Product(const Matrix& left, const Matrix& right);

// The largest difference between two elements in the same place; NaN when one of them is NaN.
double LargestDifference(const Matrix& a, const Matrix& b);

} // namespace z3d::reference
