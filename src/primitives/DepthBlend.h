// The weighted mean of two slices, sample by sample.
#pragma once

#include "primitives/ValueRange.h"

#include <cstddef>
#include <cstdint>

namespace z3d::primitives {

// Sample i of the result is v = a[i] * (1 - t) + b[i] * t in double, one rounding per operation, raised to
// bounds.min when it is less and then lowered to bounds.max when it is greater (so a NaN stays). `t` may lie
// outside 0 to 1. `a` and `b` may be the same; the result overlaps neither.
struct DepthBlend {
    double t;
    ValueRange bounds;

    // Stores v rounded to a float.
    void Floats(const float* a, const float* b, float* result, std::size_t count) const;

    // Stores v truncated to a byte; bounds beyond 0 and 255 count as these.
    void Bytes(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* result, std::size_t count) const;
};

} // namespace z3d::primitives
