// Rotation matrices from three axis angles.
//
// Matrices are nine doubles, row-major, and act on column vectors. Axis indexes: 0 = X, 1 = Y, 2 = Z.
#pragma once

#include <cstdint>

namespace z3d::geometry {

// Writes R(order[0]) * R(order[1]) * R(order[2]) to the nine doubles at `matrix`; `order` has three entries.
// The angles are degrees about X, Y and Z, in this sequence whatever the order is. A positive Y angle turns
// the Z axis towards -X, against the sense of the other two axes. An axis index outside 0 to 2 contributes
// the identity; a null pointer makes the call do nothing; an angle that is not finite makes elements NaN.
void CreateRotateMatrix(double* matrix, const std::int16_t* order, float angleX, float angleY, float angleZ);

} // namespace z3d::geometry
