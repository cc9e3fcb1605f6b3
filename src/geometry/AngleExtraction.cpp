#include "geometry/AngleExtraction.h"

#include "geometry/Angles.h"
#include "geometry/RotationMatrix.h"
#include "geometry/Trigonometry.h"

#include <cmath>

namespace z3d::geometry {
namespace {

constexpr std::int16_t kXYZ[3] = {0, 1, 2};
constexpr std::int16_t kZXY[3] = {2, 0, 1};
constexpr std::int16_t kYZX[3] = {1, 2, 0};

constexpr double kPoleDistance = 0.00001;

struct ColumnAngles {
    double middle; // of the order's second axis
    double first;  // of the order's first axis
};

// One column of a cyclic order holds the sine of the middle angle, and the sine y and cosine x of the first
// angle, both times the cosine of the middle one. At the pole that cosine vanishes, and with it y and x: the
// first angle is taken as 0 there, and the last one gets the whole turn.
ColumnAngles AnglesOfColumn(double sineOfMiddle, double y, double x) {
    if (std::fabs(1.0 - std::fabs(sineOfMiddle)) > kPoleDistance) {
        const double middle = ArcSine(sineOfMiddle);
        const double cosine = SineAndCosine(middle).cosine;
        return {middle, AngleFromComponents(y / cosine, x / cosine)};
    }
    return {sineOfMiddle >= 0.0 ? kQuarterTurn : -kQuarterTurn, 0.0};
}

float FloatDegrees(double radians) { return static_cast<float>(RadiansToDegrees(radians)); }

// Without its first two factors a rotation is the elementary matrix of its last axis, whose sine and cosine
// stand at two known indexes.
float LastAngle(const double* matrix, const double* firstTwoFactors, int sineIndex, int cosineIndex) {
    double last[9];
    TransposeMultiply(last, firstTwoFactors, matrix);
    return FloatDegrees(AngleFromComponents(last[sineIndex], last[cosineIndex]));
}

template <class... Pointers>
bool AnyNull(const Pointers*... pointers) {
    return (... || (pointers == nullptr));
}

} // namespace

void GetAngleXY(double* matrix, double m02, double m12, double m22, float* angleX, float* angleY,
                float angleZ) {
    if (AnyNull(matrix, angleX, angleY)) return;
    const ColumnAngles angles = AnglesOfColumn(m02, -m12, m22);
    *angleX = FloatDegrees(angles.first);
    *angleY = FloatDegrees(-angles.middle); // the column holds the negative sine of Y
    CreateRotateMatrix(matrix, kXYZ, *angleX, *angleY, angleZ);
}

void GetAngleZX(double* matrix, double m01, double m11, double m21, float* angleX, float* angleZ,
                float angleY) {
    if (AnyNull(matrix, angleX, angleZ)) return;
    const ColumnAngles angles = AnglesOfColumn(m21, -m01, m11);
    *angleX = FloatDegrees(angles.middle);
    *angleZ = FloatDegrees(angles.first);
    CreateRotateMatrix(matrix, kZXY, *angleX, angleY, *angleZ);
}

void GetAngleYZ(double* matrix, double m00, double m10, double m20, float* angleY, float* angleZ,
                float angleX) {
    if (AnyNull(matrix, angleY, angleZ)) return;
    const ColumnAngles angles = AnglesOfColumn(m10, m20, m00);
    *angleY = FloatDegrees(angles.first);
    *angleZ = FloatDegrees(angles.middle);
    CreateRotateMatrix(matrix, kYZX, angleX, *angleY, *angleZ);
}

void GetAngleXYZ(const double* matrix, float* angleX, float* angleY, float* angleZ) {
    if (AnyNull(matrix, angleX, angleY, angleZ)) return;
    double firstTwo[9];
    GetAngleXY(firstTwo, matrix[2], matrix[5], matrix[8], angleX, angleY, 0.0f);
    *angleZ = LastAngle(matrix, firstTwo, 3, 0);
}

void GetAngleZXY(const double* matrix, float* angleX, float* angleY, float* angleZ) {
    if (AnyNull(matrix, angleX, angleY, angleZ)) return;
    double firstTwo[9];
    GetAngleZX(firstTwo, matrix[1], matrix[4], matrix[7], angleX, angleZ, 0.0f);
    *angleY = LastAngle(matrix, firstTwo, 6, 0);
}

void GetAngleYZX(const double* matrix, float* angleX, float* angleY, float* angleZ) {
    if (AnyNull(matrix, angleX, angleY, angleZ)) return;
    double firstTwo[9];
    GetAngleYZ(firstTwo, matrix[0], matrix[3], matrix[6], angleY, angleZ, 0.0f);
    *angleX = LastAngle(matrix, firstTwo, 7, 4);
}

void ChangeOrder(const std::int16_t* fromOrder, const std::int16_t* toOrder, float* angleX, float* angleY,
                 float* angleZ) {
    if (AnyNull(fromOrder, toOrder, angleX, angleY, angleZ)) return;
    if (fromOrder[2] == toOrder[2]) return;

    double matrix[9];
    CreateRotateMatrix(matrix, fromOrder, *angleX, *angleY, *angleZ);
    switch (toOrder[2]) {
    case 0:
        GetAngleYZX(matrix, angleX, angleY, angleZ);
        break;
    case 1:
        GetAngleZXY(matrix, angleX, angleY, angleZ);
        break;
    case 2:
        GetAngleXYZ(matrix, angleX, angleY, angleZ);
        break;
    default:
        break;
    }
}

} // namespace z3d::geometry
