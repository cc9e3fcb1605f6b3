#include "compose/OutputSize.h"

#include <cmath>

namespace z3d::compose {
namespace {

// Products below 1, and none at all (a NaN), give 1.
std::int32_t ScaledLength(std::int32_t length, long double scale) {
    const long double scaled = static_cast<long double>(length) * scale;
    return scaled >= 1 ? static_cast<std::int32_t>(scaled) : 1;
}

} // namespace

// Extended precision up to the truncation: in double a few products fall on the other side of an integer.
volume::VolumeSize OutputSize(const volume::VolumeSize& stored, std::int32_t maxDiagonal) {
    const auto square = [](std::int64_t length) { return static_cast<long double>(length * length); };
    const long double diagonal =
        std::sqrt(square(stored.width) + square(stored.height) + square(stored.depth));
    const long double limit = maxDiagonal;
    const long double scale = diagonal > limit ? limit / diagonal : 1.0L;
    return {ScaledLength(stored.width, scale), ScaledLength(stored.height, scale),
            ScaledLength(stored.depth, scale)};
}

} // namespace z3d::compose
