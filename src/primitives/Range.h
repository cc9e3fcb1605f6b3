// Smallest and largest values.
#pragma once

#include "primitives/Status.h"

#include <cstdint>

namespace z3d::primitives {

// Rows are scanned until the region ends, or until a completed row leaves smallest 0 and largest 255: no row
// after that one is read. The step is in bytes.
Status MinMax8uC1(const std::uint8_t* source, std::int32_t sourceStep, std::int32_t width,
                  std::int32_t height, std::uint8_t* smallest, std::uint8_t* largest);

// A running value starts as the first element and is replaced by each element that compares greater. Elements
// that are not numbers never do, and when the first element is not a number it stays. Of equal elements
// (zeros of either sign) the earliest counts.
Status VecMax32f(const float* source, std::int32_t length, float* largest);

// The running value is replaced by each element that compares less, and also when either is not a number. So
// only what follows the last NaN counts, or that NaN itself when it is the last element. Of equal elements
// the earliest counts.
Status VecMin32f(const float* source, std::int32_t length, float* smallest);

} // namespace z3d::primitives
