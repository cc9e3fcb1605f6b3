// Axis angles of a matrix, each order written out by itself, step after step.
#pragma once

#include "reference/PlainRotation.h"

namespace z3d::reference {

struct AxisAngles {
    float x;
    float y;
    float z;
};

// The two angles of the order's first two axes, and the matrix rebuilt with `third` as the last angle.
AxisAngles PlainAngleXY(Matrix& rebuilt, double m02, double m12, double m22, float third);
AxisAngles PlainAngleZX(Matrix& rebuilt, double m01, double m11, double m21, float third);
AxisAngles PlainAngleYZ(Matrix& rebuilt, double m00, double m10, double m20, float third);

AxisAngles PlainAngleXYZ(const Matrix& matrix);
AxisAngles PlainAngleZXY(const Matrix& matrix);
AxisAngles PlainAngleYZX(const Matrix& matrix);

} // namespace z3d::reference
