// Float vectors: copy, and multiplication or addition of a constant in place. Lengths are in floats.
#pragma once

#include "primitives/Status.h"

#include <cstdint>

namespace z3d::primitives {

// The two vectors must not overlap.
Status VecCopy32f(const float* source, float* destination, std::int32_t length);

// A value of 1 writes nothing. A value of 0 sets every element to positive zero, whatever it was (an infinity
// or a NaN too). A value that is not a number counts as equal to 1 and writes nothing.
Status VecMulC32fInPlace(float value, float* data, std::int32_t length);

// A value of 0, or one that is not a number, writes nothing.
Status VecAddC32fInPlace(float value, float* data, std::int32_t length);

} // namespace z3d::primitives
