#include "geometry/Angles.h"

#include "geometry/Trigonometry.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace z3d::geometry {
namespace {

static_assert(kFullTurn == 2.0 * kHalfTurn, "the wrap leaves both half turns where they are");
static_assert(std::bit_cast<std::uint64_t>(kQuarterTurn) == 0x3FF921FB54442D11);

constexpr double kDegreesPerRadian = 57.29577951308239;
constexpr double kFullTurnDegrees = 360.0;
constexpr double kHalfTurnDegrees = 180.0;
constexpr double kZeroDegrees = 0.001;
constexpr double kZeroComponent = 0.00001;

// Past so many turns a subtraction of one turn loses bits, and in the end does not change the angle at all.
constexpr double kTurnsToSubtract = 1000.0;

// Moves an angle by whole turns until neither neighbour is nearer to zero; a tie does not move it.
double Wrap(double angle, double turn) {
    if (!(std::fabs(angle) <= kTurnsToSubtract * turn)) angle = std::fmod(angle, turn);
    while (std::fabs(angle) > std::fabs(turn - angle))
        angle -= turn;
    while (std::fabs(angle) > std::fabs(angle + turn))
        angle += turn;
    return angle;
}

double ZeroIfSmall(double component) { return std::fabs(component) < kZeroComponent ? 0.0 : component; }

} // namespace

double WrapRadians(double radians) { return Wrap(radians, kFullTurn); }

double RadiansToDegrees(double radians) {
    double degrees = radians * kDegreesPerRadian;

    // The two constants make a half turn 180.00000000000003 degrees. That excess is rounding, not a reason to
    // wrap to the other side.
    if (std::fabs(radians) <= kHalfTurn) {
        if (std::fabs(degrees) > kHalfTurnDegrees) degrees = std::copysign(kHalfTurnDegrees, degrees);
    } else {
        degrees = Wrap(degrees, kFullTurnDegrees);
    }
    return std::fabs(degrees) < kZeroDegrees ? 0.0 : degrees;
}

double AngleFromComponents(double y, double x) {
    y = ZeroIfSmall(y);
    x = ZeroIfSmall(x);
    const double length = SquareRoot(x * x + y * y);
    const double sine = y / length;
    const double cosine = x / length;

    // The arc sine of the magnitude is the angle in the first quadrant; the signs tell the quadrant.
    const double first = ArcSine(std::fabs(sine));
    if (sine >= 0.0 && cosine >= 0.0) return WrapRadians(first);
    if (sine >= 0.0 && cosine < 0.0) return WrapRadians(kHalfTurn - first);
    if (sine < 0.0 && cosine < 0.0) return WrapRadians(first + kHalfTurn);
    if (sine < 0.0 && cosine >= 0.0) return WrapRadians(kFullTurn - first);
    return std::numeric_limits<double>::quiet_NaN();
}

void TransposeMultiply(double* product, const double* a, const double* b) {
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            double sum = 0.0;
            for (int k = 0; k < 3; ++k)
                sum += a[k * 3 + row] * b[k * 3 + column];
            product[row * 3 + column] = sum;
        }
    }
}

} // namespace z3d::geometry
