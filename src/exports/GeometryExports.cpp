#include "Zentra3DRendering.h"

#include "exports/HostCall.h"
#include "geometry/RotationMatrix.h"

using namespace z3d;
using exports::HostCall;

void Z3D_CALL CreateRotateMatrix(double* matrix, const AxisOrder* order, float angleX, float angleY,
                                 float angleZ) {
    HostCall<geometry::CreateRotateMatrix>(matrix, order == nullptr ? nullptr : order->axis, angleX, angleY,
                                           angleZ);
}
