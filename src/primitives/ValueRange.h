// The smallest and the largest of some samples.
#pragma once

#include <cfloat>
#include <cstddef>
#include <cstdint>

namespace z3d::primitives {

// A new range holds the two extremes the wrong way round: any number widens it.
struct ValueRange {
    float max = -FLT_MAX;
    float min = FLT_MAX;

    // `max` is replaced by a greater value, `min` by a smaller one: a NaN changes nothing, and of zeros of
    // either sign the first stays.
    void Widen(float value) {
        if (value > max) max = value;
        if (value < min) min = value;
    }
    void Widen(const ValueRange& other) {
        if (other.max > max) max = other.max;
        if (other.min < min) min = other.min;
    }
};

// Widens by every sample in order, with the result of calling Widen for each.
void WidenByBytes(ValueRange& range, const std::uint8_t* samples, std::size_t count);
void WidenByFloats(ValueRange& range, const float* samples, std::size_t count);

} // namespace z3d::primitives
