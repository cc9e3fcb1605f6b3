// Three-channel bytes to one grey channel.
#pragma once

#include "primitives/Status.h"

#include <cstdint>

namespace z3d::primitives {

// grey = (w0 * s0 + w1 * s1 + w2 * s2) >> 12, its low byte stored. The integer weights are in units of
// 1/4096: the integer part of 4096 * weight + 0.5 in double, or 1225, 2404 and 467 when `weights` is null.
// There is no rounding term: with weights of 1/3 (three times 1365, 4095 in all) white becomes 254. Steps are
// in bytes.
Status ColorToGray8uC3C1(const std::uint8_t* source, std::int32_t sourceStep, std::uint8_t* destination,
                         std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                         const float* weights);

} // namespace z3d::primitives
