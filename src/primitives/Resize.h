// Scaling a one-channel image by two independent factors.
#pragma once

#include "primitives/Region.h"
#include "primitives/Status.h"

#include <cstdint>

namespace z3d::primitives {

enum Interpolation : std::int32_t { kNearest = 1, kBilinear = 2, kCubic = 4 };

// Scales the part of `rectangle` that lies in the source, of W x H pixels, into the destination's top-left
// corner. The written region has trunc(W * xFactor + 1e-7) columns, at least 1 and at most the destination's
// width, and likewise rows; what lies outside it is left as it is. The first and the last pixel of the
// rectangle meet the first and the last of the W * xFactor positions: end to end, without a half-pixel
// offset.
//
// Steps are in bytes; those of float images count in whole floats, a remainder of the division by 4 being
// ignored. kCubic takes the bilinear path; a source of width or height 1 is always sampled by the nearest
// pixel of the rectangle. Source and destination must not overlap.
//
// Checked in this order: null pointers; source size; steps; rectangle (origin below 0, size below 1) and
// destination size; rectangle starting outside the source (StatusNoOverlap); factors (StatusFactorError, also
// for NaN); interpolation code; scratch memory (StatusMemoryError).
Status Resize8uC1(const std::uint8_t* source, ImageSize sourceSize, std::int32_t sourceStep,
                  ImageRect rectangle, std::uint8_t* destination, std::int32_t destinationStep,
                  ImageSize destinationSize, double xFactor, double yFactor, std::int32_t interpolation);
Status Resize32fC1(const float* source, ImageSize sourceSize, std::int32_t sourceStep, ImageRect rectangle,
                   float* destination, std::int32_t destinationStep, ImageSize destinationSize,
                   double xFactor, double yFactor, std::int32_t interpolation);

} // namespace z3d::primitives
