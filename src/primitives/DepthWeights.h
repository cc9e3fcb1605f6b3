// How two slices are blended into one: what is decided once per slice.
#pragma once

#include <cstdint>

namespace z3d::primitives {

// v = a * (1 - t) + b * t in double, one rounding per operation, raised to min when less and then lowered to max when
// greater.
struct DepthWeights {
    double t;
    double min;
    double max;
};

// The same for bytes, whose results are truncated, with whole arithmetic where that is the same:
//   a + floor((b - a) * weight / 2^22), cut to min and max, where |b - a| is below `wholeBelow`.
// There -2^22 < weight < 2^22, and min and max are whole numbers from 0 to 255.
struct ByteDepthWeights {
    DepthWeights weights; // max is at most 255
    std::int32_t weight;
    std::int32_t wholeBelow; // 0 to 256
};

} // namespace z3d::primitives
