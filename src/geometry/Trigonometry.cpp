#include "geometry/Trigonometry.h"

#include <cmath>
#include <cstdint>
#include <emmintrin.h>
#include <limits>

namespace z3d::geometry {
namespace {

static_assert(std::numeric_limits<long double>::digits == 64,
              "the error bounds below rest on 64-bit significands");

// pi/2 in hexadecimal is 1.921FB544 42D18469 898CC517 01B839A2 52049C11..., here rounded to 64 bits
constexpr long double kHalfPi = 0x1.921FB54442D18469898CC517p+0L;

// and here cut into 40, 38 and 64 bits. The first two parts times a count below 2^24 are exact.
constexpr long double kHalfPiHigh = 0x1.921FB54442p+0L;
constexpr long double kHalfPiMiddle = 0xD18469898Cp-80L;
constexpr long double kHalfPiLow = 0xC51701B839A252049C11p-160L;

constexpr double kExactReductionLimit = 0x1p24;

// Both series are summed from the inside out. On [0, pi/4] the first term left out is below 2^-72 of the sum.
constexpr int kLastSinePower = 19;
constexpr int kLastCosinePower = 20;
// On [0, 1/2] the first term left out is below 2^-70 of the sum.
constexpr int kLastArcSineTerm = 30;

// r (1 - r^2 / (2 * 3) (1 - r^2 / (4 * 5) (1 - ...)))
long double SineSeries(long double r) {
    long double sum = 1.0L;
    for (int power = kLastSinePower; power > 1; power -= 2) {
        sum = 1.0L - r * r / static_cast<long double>(power * (power - 1)) * sum;
    }
    return r * sum;
}

// 1 - r^2 / (1 * 2) (1 - r^2 / (3 * 4) (1 - ...))
long double CosineSeries(long double r) {
    long double sum = 1.0L;
    for (int power = kLastCosinePower; power > 0; power -= 2) {
        sum = 1.0L - r * r / static_cast<long double>(power * (power - 1)) * sum;
    }
    return sum;
}

// s (1 + s^2 1/2 (1/3 + s^2 3/4 (1/5 + s^2 5/6 (...))))
long double ArcSineSeries(long double s) {
    long double sum = 0.0L;
    for (int term = kLastArcSineTerm; term >= 0; --term) {
        const auto odd = static_cast<long double>(2 * term + 1);
        sum = 1.0L / odd + s * s * (odd / (odd + 1.0L)) * sum;
    }
    return s * sum;
}

} // namespace

SineCosine SineAndCosine(double radians) {
    if (!std::isfinite(radians)) {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        return {nan, nan};
    }

    // Bring an angle that is too large for the exact reduction below into one turn.
    long double angle = radians;
    if (std::fabs(radians) > kExactReductionLimit) angle = std::fmod(angle, 4.0L * kHalfPi);

    // Subtract the nearest multiple of a right angle. The first subtraction is exact, and the second is
    // wherever it cancels, so the rest keeps nearly all of its 64 bits even next to such a multiple.
    const long double rightAngles = angle / kHalfPi;
    const auto nearest =
        static_cast<std::int32_t>(rightAngles < 0.0L ? rightAngles - 0.5L : rightAngles + 0.5L);
    const auto count = static_cast<long double>(nearest);
    const long double rest = ((angle - count * kHalfPiHigh) - count * kHalfPiMiddle) - count * kHalfPiLow;

    const auto sine = static_cast<double>(SineSeries(rest));
    const auto cosine = static_cast<double>(CosineSeries(rest));
    switch (nearest & 3) {
    case 0:
        return {sine, cosine};
    case 1:
        return {cosine, -sine};
    case 2:
        return {-sine, -cosine};
    default:
        return {-cosine, sine};
    }
}

double ArcSine(double sine) {
    if (!(std::fabs(sine) <= 1.0)) return std::numeric_limits<double>::quiet_NaN();

    // Above a half the series is slow: asin(x) = pi/2 - 2 asin(sqrt((1 - x) / 2)), where 1 - x is exact.
    const auto magnitude = static_cast<long double>(std::fabs(sine));
    const long double angle = magnitude <= 0.5L
                                  ? ArcSineSeries(magnitude)
                                  : kHalfPi - 2.0L * ArcSineSeries(std::sqrt((1.0L - magnitude) / 2.0L));
    return std::copysign(static_cast<double>(angle), sine);
}

double SquareRoot(double value) {
    const __m128d operand = _mm_set_sd(value);
    return _mm_cvtsd_f64(_mm_sqrt_sd(operand, operand));
}

} // namespace z3d::geometry
