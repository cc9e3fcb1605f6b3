// Interleaving three planes into one three-channel image.
#pragma once

#include "primitives/Status.h"

#include <cstdint>

namespace z3d::primitives {

// Samples 3x, 3x + 1 and 3x + 2 of a destination row receive planes[0], planes[1] and planes[2] at x. The
// array holds three plane addresses, which share the source step; the destination overlaps none of them.
// Steps are in bytes.
Status CopyPlanes8uP3C3(const std::uint8_t* const* planes, std::int32_t sourceStep, std::uint8_t* destination,
                        std::int32_t destinationStep, std::int32_t width, std::int32_t height);
Status CopyPlanes32fP3C3(const float* const* planes, std::int32_t sourceStep, float* destination,
                         std::int32_t destinationStep, std::int32_t width, std::int32_t height);

} // namespace z3d::primitives
