// Floats to bytes, with saturation and a choice of rounding.
//
// One value y: 255 when y >= 255, 0 when y <= 0 or y is not a number, else y rounded by the mode.
#pragma once

#include "primitives/Status.h"

#include <cstdint>

namespace z3d::primitives {

// Any other mode rounds toward zero.
inline constexpr std::int32_t kRoundHalfToEven = 1;

// Converts source[i] * 2^-scaleFactor. Source and destination have `length` elements.
Status VecConvert32f8uSfs(const float* source, std::uint8_t* destination, std::int32_t length,
                          std::int32_t roundingMode, std::int32_t scaleFactor);

// Converts each of the 3 * width samples of every row; steps in bytes.
Status Convert32f8uC3(const float* source, std::int32_t sourceStep, std::uint8_t* destination,
                      std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                      std::int32_t roundingMode);

} // namespace z3d::primitives
