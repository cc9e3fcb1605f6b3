#include "geometry/SubvolumeConvert.h"

#include <cmath>

namespace z3d::geometry {
namespace {

std::int16_t LowSixteenBits(std::int64_t number) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(number));
}

} // namespace

std::int16_t SubvolumeConvert(std::int32_t value, std::int32_t newScale, std::int32_t oldScale,
                              std::int16_t roundUp) {
    if (oldScale == 0) return 1;

    // The product is below 2^63, and no quotient is larger, so the whole number always fits 64 bits.
    const double product = static_cast<double>(value) * static_cast<double>(newScale);
    const double quotient = product / static_cast<double>(oldScale);
    const auto whole = static_cast<std::int64_t>(roundUp > 0 ? std::ceil(quotient) : std::floor(quotient));

    // The wrap beyond 16 bits comes before the limits, on purpose.
    const std::int16_t wrapped = LowSixteenBits(whole);
    if (wrapped < 1) return 1;
    return wrapped > newScale ? LowSixteenBits(newScale) : wrapped;
}

} // namespace z3d::geometry
