// The smallest and the largest sample of slices.
#pragma once

#include "frame/LockedImage.h"
#include "primitives/ValueRange.h"

namespace z3d::volume {

// Widens by an image's samples in order: floats when it has 4 bytes per pixel, else bytes.
void WidenByPixels(primitives::ValueRange& range, const frame::LockedImage& image);

// The same for an unlocked slice; false when it cannot be locked.
[[nodiscard]] bool WidenBySlice(primitives::ValueRange& range, Image2D* slice);

} // namespace z3d::volume
