#include "reference/WideTrigonometry.h"

#include <cmath>
#include <cstdint>

namespace z3d::reference {
namespace {

// pi/2 as a sum of three doubles: together 160 bits.
constexpr double kHalfPi[3] = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54, -0x1.f1976b7ed8fbcp-110};

// The plain Taylor sum from x^first / first! on, every second power.
Wide TaylorSum(Wide x, int first) {
    Wide term = first == 0 ? Wide{1} : x;
    Wide sum = term;
    for (int power = first + 2; power < 40; power += 2) {
        term *= -x * x / (power * (power - 1));
        sum += term;
    }
    return sum;
}

// sin(radians + quarterTurns * pi/2)
Wide SineOfSum(Wide radians, std::int64_t quarterTurns) {
    const std::int64_t nearest = std::llround(static_cast<double>(radians) / kHalfPi[0]);
    const auto count = static_cast<Wide>(nearest);
    const Wide rest = ((radians - count * kHalfPi[0]) - count * kHalfPi[1]) - count * kHalfPi[2];
    const std::int64_t quadrant = (nearest + quarterTurns) & 3;
    const Wide magnitude = TaylorSum(rest, quadrant % 2 == 0 ? 1 : 0);
    return quadrant < 2 ? magnitude : -magnitude;
}

} // namespace

Wide WideSine(Wide radians) { return SineOfSum(radians, 0); }
Wide WideCosine(Wide radians) { return SineOfSum(radians, 1); }

double ErrorInUlp(double got, Wide want) {
    const auto nearest = static_cast<double>(want);
    const double ulp = std::nextafter(std::fabs(nearest), HUGE_VAL) - std::fabs(nearest);
    const Wide difference = Wide{got} - want;
    return static_cast<double>((difference < 0 ? -difference : difference) / ulp);
}

} // namespace z3d::reference
