// Filling a one-channel region with a constant.
#pragma once

#include "primitives/Status.h"

#include <cstdint>

namespace z3d::primitives {

// Writes `value` into the first `width` bytes of each of `height` rows; padding is left as it is.
Status Set8uC1(std::uint8_t value, std::uint8_t* destination, std::int32_t destinationStep,
               std::int32_t width, std::int32_t height);

} // namespace z3d::primitives
