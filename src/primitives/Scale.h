// Linear maps between bytes and a range of floats.
//
// All arithmetic is double, rounded where it is stored. Both primitives process 3 * width samples per row,
// and both check the range first: StatusRangeError when vMax - vMin is not above 0 (or not a number) comes
// even before a null pointer. Steps are in bytes.
#pragma once

#include "primitives/Status.h"

#include <cstdint>

namespace z3d::primitives {

// byte * k + vMin with k = (vMax - vMin) * the single-precision value of 1/255.
Status Scale8u32fC3(const std::uint8_t* source, std::int32_t sourceStep, float* destination,
                    std::int32_t destinationStep, std::int32_t width, std::int32_t height, float vMin,
                    float vMax);

// 255 when x >= vMax; 0 when x <= vMin or x is not a number; else x * k + (0.5 - k * vMin), where
// k = 255 / (vMax - vMin), truncated, an odd result that was exact going down by one.
Status Scale32f8uC3(const float* source, std::int32_t sourceStep, std::uint8_t* destination,
                    std::int32_t destinationStep, std::int32_t width, std::int32_t height, float vMin,
                    float vMax);

} // namespace z3d::primitives
