#pragma once

#include <cstdint>
#include <limits>

namespace z3d::test {

// For tests of doubles too: widening a float keeps these two.
inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
inline constexpr float kInfinity = std::numeric_limits<float>::infinity();

inline constexpr std::int32_t kLargestInt = std::numeric_limits<std::int32_t>::max();

} // namespace z3d::test
