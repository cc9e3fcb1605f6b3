// Intensity windows as intervals of voxel values.
#pragma once

#include <cstdint>

namespace z3d::render {

constexpr std::int32_t kLargestGrey = 255;
constexpr std::int32_t kLargestSum = 765;

// The values first..last; first > last when there are none.
struct ValueInterval {
    std::int32_t first;
    std::int32_t last;
};

// What a voxel value must satisfy to be accepted by the window of a mode.
enum class WindowTest {
    Inclusive, // low <= value <= high
    Strict,    // low < value < high
    Skipping   // not value < low, not value > high: a NaN bound skips nothing
};

// The integers of 0..largest that a window accepts: an interval, as floats are compared. Each is asked once, so bounds
// of any kind (NaN, infinite, fractional) are decided by the comparisons of the mode itself.
ValueInterval AcceptedValues(std::int32_t largest, WindowTest test, float low, float high);

} // namespace z3d::render
