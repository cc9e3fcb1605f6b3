// Intensity windows as ranges of voxel values.
#pragma once

#include <cstdint>

namespace z3d::render {

constexpr std::int32_t kLargestGrey = 255;
constexpr std::int32_t kLargestSum = 765;

// The accepted values first..last; first > last when there are none.
struct ValueRange {
    std::int32_t first;
    std::int32_t last;
    bool IsEmpty() const { return first > last; }
};

// Float bounds accept an interval of the integers 0..largest; each is asked once, so bounds of any kind (not
// numbers, infinite, fractional) are decided by the comparisons of the rule itself.
template <class Accepts>
ValueRange RangeOf(std::int32_t largest, const Accepts& accepts) {
    ValueRange range = {1, 0};
    for (std::int32_t value = 0; value <= largest; ++value) {
        if (!accepts(static_cast<float>(value))) continue;
        if (range.IsEmpty()) range.first = value;
        range.last = value;
    }
    return range;
}

inline ValueRange InclusiveRange(std::int32_t largest, float low, float high) {
    return RangeOf(largest, [=](float value) { return value >= low && value <= high; });
}
inline ValueRange StrictRange(std::int32_t largest, float low, float high) {
    return RangeOf(largest, [=](float value) { return value > low && value < high; });
}
// Skips what lies outside, so that a bound that is not a number skips nothing.
inline ValueRange UnskippedRange(std::int32_t largest, float low, float high) {
    return RangeOf(largest, [=](float value) { return !(value < low || value > high); });
}

} // namespace z3d::render
