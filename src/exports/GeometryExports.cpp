#include "Zentra3DRendering.h"

#include "exports/HostCall.h"
#include "geometry/AngleExtraction.h"
#include "geometry/GammaLookup.h"
#include "geometry/RotationMatrix.h"
#include "geometry/SubvolumeConvert.h"

using namespace z3d;
using exports::HostCall;
using exports::Only16Bits;

namespace {

const short* Axes(const AxisOrder* order) { return order == nullptr ? nullptr : order->axis; }

} // namespace

void Z3D_CALL CreateRotateMatrix(double* matrix, const AxisOrder* order, float angleX, float angleY,
                                 float angleZ) {
    HostCall<geometry::CreateRotateMatrix>(matrix, Axes(order), angleX, angleY, angleZ);
}

void Z3D_CALL GetAngleXY(double* matrix, double m02, double m12, double m22, float* angleX, float* angleY,
                         float angleZ) {
    HostCall<geometry::GetAngleXY>(matrix, m02, m12, m22, angleX, angleY, angleZ);
}

void Z3D_CALL GetAngleZX(double* matrix, double m01, double m11, double m21, float* angleX, float* angleZ,
                         float angleY) {
    HostCall<geometry::GetAngleZX>(matrix, m01, m11, m21, angleX, angleZ, angleY);
}

void Z3D_CALL GetAngleYZ(double* matrix, double m00, double m10, double m20, float* angleY, float* angleZ,
                         float angleX) {
    HostCall<geometry::GetAngleYZ>(matrix, m00, m10, m20, angleY, angleZ, angleX);
}

void Z3D_CALL GetAngleXYZ(const double* matrix, float* angleX, float* angleY, float* angleZ) {
    HostCall<geometry::GetAngleXYZ>(matrix, angleX, angleY, angleZ);
}

void Z3D_CALL GetAngleZXY(const double* matrix, float* angleX, float* angleY, float* angleZ) {
    HostCall<geometry::GetAngleZXY>(matrix, angleX, angleY, angleZ);
}

void Z3D_CALL GetAngleYZX(const double* matrix, float* angleX, float* angleY, float* angleZ) {
    HostCall<geometry::GetAngleYZX>(matrix, angleX, angleY, angleZ);
}

void Z3D_CALL ChangeOrder(const AxisOrder* fromOrder, const AxisOrder* toOrder, float* angleX, float* angleY,
                          float* angleZ) {
    HostCall<geometry::ChangeOrder>(Axes(fromOrder), Axes(toOrder), angleX, angleY, angleZ);
}

int Z3D_CALL AdjustGamma(const unsigned char* table, float level) {
    return HostCall<geometry::AdjustGamma>(table, level);
}

short Z3D_CALL SubvolumeConvert(int value, int newScale, int oldScale, short roundUp) {
    return HostCall<geometry::SubvolumeConvert>(value, newScale, oldScale, Only16Bits(roundUp));
}
