// The three axis angles of a rotation matrix, for the three cyclic axis orders.
//
// Matrices, signs and axis indexes are those of RotationMatrix.h. Angles come in and go out as floats in
// degrees; those that go out lie in [-180, 180] and are exactly 0 within 0.001 degrees of it. Within about a
// quarter of a degree of the pole of an order (its middle angle at 90 or -90, where the other two turn about
// the same axis) the middle angle becomes exactly 90 or -90, and the first angle 0.
//
// Elements that belong to no rotation may make angles NaN. A null pointer makes a call do nothing.
#pragma once

#include <cstdint>

namespace z3d::geometry {

// From one column of a matrix: the two angles it holds, and the matrix of the order rebuilt from these, as
// rounded to floats, and the caller's third angle. The name tells the order's first two axes; an argument mRC
// is the element in row R and column C.
void GetAngleXY(double* matrix, double m02, double m12, double m22, float* angleX, float* angleY,
                float angleZ);
void GetAngleZX(double* matrix, double m01, double m11, double m21, float* angleX, float* angleZ,
                float angleY);
void GetAngleYZ(double* matrix, double m00, double m10, double m20, float* angleY, float* angleZ,
                float angleX);

// From a whole matrix: all three angles. The name tells the order.
void GetAngleXYZ(const double* matrix, float* angleX, float* angleY, float* angleZ);
void GetAngleZXY(const double* matrix, float* angleX, float* angleY, float* angleZ);
void GetAngleYZX(const double* matrix, float* angleX, float* angleY, float* angleZ);

// Replaces three angles in `fromOrder` by those of the same rotation in the cyclic order that has the last
// axis of `toOrder`. The angles stay untouched when both orders (three entries each) end in the same axis,
// or when `toOrder` ends in no axis.
void ChangeOrder(const std::int16_t* fromOrder, const std::int16_t* toOrder, float* angleX, float* angleY,
                 float* angleZ);

} // namespace z3d::geometry
