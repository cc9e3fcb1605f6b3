// A volume with another number of slices.
#pragma once

#include "frame/Host.h"
#include "frame/Owned.h"
#include "primitives/ValueRange.h"

#include <cstdint>

namespace z3d::volume {

// A new volume of the source's width, height and format with `newDepth` slices (0 to 65535): each the linear
// interpolation between the two source slices around its position, clamped to `bounds`. Both stacks span the
// same length, so at their ends positions lie up to half a slice outside the source and are extrapolated.
//
// The source is unlocked and its slices, of 1 or 4 bytes per pixel, are all present and alike. They are consumed:
// each is freed, and its entry cleared, as soon as no later slice needs it.
//
// `range` becomes the range of the result; without slices it stays as it is.
//
// Null, without a warning, when the host cancels, when memory is short, or when the source is not as stated.
// Reports a start, and progress after each slice.
frame::OwnedVolume ResampleDepth(Volume3D& source, std::int32_t newDepth,
                                 const primitives::ValueRange& bounds, primitives::ValueRange& range,
                                 const frame::Host& host);

} // namespace z3d::volume
