#include "reference/PlainAngles.h"

#include "geometry/Trigonometry.h"

#include <cmath>
#include <cstddef>

namespace z3d::reference {
namespace {

using geometry::ArcSine;

constexpr double kPi = 3.14159265358979;
constexpr double kTwoPi = 6.28318530717958;
constexpr double kHalfPi = 1.570796326794895;

double Cosine(double angle) { return geometry::SineAndCosine(angle).cosine; }

// Any angle that reaches these loops lies within one turn of zero, or is NaN, which ends them at once.
double Wrapped(double angle, double turn) {
    while (std::fabs(angle) > std::fabs(turn - angle))
        angle = angle - turn;
    while (std::fabs(angle) > std::fabs(angle + turn))
        angle = angle + turn;
    return angle;
}

float Degrees(double radians) {
    double degrees = radians * 57.29577951308239;
    // The rounding of the constants must not carry a half turn over to the other side.
    if (radians <= kPi && degrees > 180) degrees = 180;
    if (radians >= -kPi && degrees < -180) degrees = -180;
    degrees = Wrapped(degrees, 360);
    if (std::fabs(degrees) < 0.001) degrees = 0;
    return static_cast<float>(degrees);
}

double Angle(double y, double x) {
    if (std::fabs(y) < 0.00001) y = 0;
    if (std::fabs(x) < 0.00001) x = 0;
    const double r = geometry::SquareRoot(x * x + y * y);
    const double u = y / r;
    const double w = x / r;
    double a = std::fabs(ArcSine(std::fabs(u)));
    if (std::isnan(u) || std::isnan(w)) return u + w;
    if (u >= 0 && w < 0)
        a = kPi - a;
    else if (u < 0 && w < 0)
        a = a + kPi;
    else if (u < 0)
        a = kTwoPi - a;
    return Wrapped(a, kTwoPi);
}

Matrix Rebuilt(int first, int second, int third, const AxisAngles& angles) {
    const auto factor = [&angles](int axis) {
        return ElementaryRotation(axis, axis == 0 ? angles.x : axis == 1 ? angles.y : angles.z);
    };
    return Product(Product(factor(first), factor(second)), factor(third));
}

Matrix Transposed(const Matrix& m) { return {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]}; }

} // namespace

AxisAngles PlainAngleXY(Matrix& rebuilt, double m02, double m12, double m22, float third) {
    double y = m02 >= 0 ? -kHalfPi : kHalfPi;
    double x = 0;
    if (std::fabs(1 - std::fabs(m02)) > 0.00001) {
        y = -ArcSine(m02);
        x = Angle(-m12 / Cosine(y), m22 / Cosine(y));
    }
    const AxisAngles angles = {Degrees(x), Degrees(y), third};
    rebuilt = Rebuilt(0, 1, 2, angles);
    return angles;
}

AxisAngles PlainAngleZX(Matrix& rebuilt, double m01, double m11, double m21, float third) {
    double x = m21 >= 0 ? kHalfPi : -kHalfPi;
    double z = 0;
    if (std::fabs(1 - std::fabs(m21)) > 0.00001) {
        x = ArcSine(m21);
        z = Angle(-m01 / Cosine(x), m11 / Cosine(x));
    }
    const AxisAngles angles = {Degrees(x), third, Degrees(z)};
    rebuilt = Rebuilt(2, 0, 1, angles);
    return angles;
}

AxisAngles PlainAngleYZ(Matrix& rebuilt, double m00, double m10, double m20, float third) {
    double z = m10 >= 0 ? kHalfPi : -kHalfPi;
    double y = 0;
    if (std::fabs(1 - std::fabs(m10)) > 0.00001) {
        z = ArcSine(m10);
        y = Angle(m20 / Cosine(z), m00 / Cosine(z));
    }
    const AxisAngles angles = {third, Degrees(y), Degrees(z)};
    rebuilt = Rebuilt(1, 2, 0, angles);
    return angles;
}

AxisAngles PlainAngleXYZ(const Matrix& matrix) {
    Matrix firstTwo;
    AxisAngles angles = PlainAngleXY(firstTwo, matrix[2], matrix[5], matrix[8], 0);
    const Matrix rest = Product(Transposed(firstTwo), matrix);
    angles.z = Degrees(Angle(rest[3], rest[0]));
    return angles;
}

AxisAngles PlainAngleZXY(const Matrix& matrix) {
    Matrix firstTwo;
    AxisAngles angles = PlainAngleZX(firstTwo, matrix[1], matrix[4], matrix[7], 0);
    const Matrix rest = Product(Transposed(firstTwo), matrix);
    angles.y = Degrees(Angle(rest[6], rest[0]));
    return angles;
}

AxisAngles PlainAngleYZX(const Matrix& matrix) {
    Matrix firstTwo;
    AxisAngles angles = PlainAngleYZ(firstTwo, matrix[0], matrix[3], matrix[6], 0);
    const Matrix rest = Product(Transposed(firstTwo), matrix);
    angles.x = Degrees(Angle(rest[7], rest[4]));
    return angles;
}

} // namespace z3d::reference
