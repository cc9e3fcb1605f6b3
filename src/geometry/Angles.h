// The arithmetic that the extraction of angles is made of. Angles inside are doubles in radians.
#pragma once

namespace z3d::geometry {

// The half turn and the full turn are cut to 15 significant digits on purpose: results depend on these bits.
inline constexpr double kHalfTurn = 3.14159265358979;
inline constexpr double kFullTurn = 6.28318530717958;
inline constexpr double kQuarterTurn = kHalfTurn / 2.0;

// The same angle in [-kHalfTurn, kHalfTurn]; both ends stay as they are. NaN for an angle that is not finite.
double WrapRadians(double radians);

// Degrees in [-180, 180]; less than 0.001 degrees either way gives exactly 0. kHalfTurn gives 180 and
// -kHalfTurn gives -180. NaN for an angle that is not finite.
double RadiansToDegrees(double radians);

// The angle, in [-kHalfTurn, kHalfTurn], whose sine and cosine are proportional to y and x. A component
// smaller than 0.00001 counts as 0. NaN when both do, for such a pair has no direction.
double AngleFromComponents(double y, double x);

// Writes the transpose of A times B; each is nine doubles, row-major. The product must not overlap them.
void TransposeMultiply(double* product, const double* a, const double* b);

} // namespace z3d::geometry
