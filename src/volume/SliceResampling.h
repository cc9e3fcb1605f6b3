// A slice with another width and height.
#pragma once

#include "frame/Owned.h"

#include <cstdint>

namespace z3d::volume {

// A new unlocked image of newWidth x newHeight pixels (1 to 65535 each) in the source's format: floats when it
// has 4 bytes per pixel, else bytes. Bilinear; the source's first column and first row do not contribute, and
// what the resize leaves unwritten at the right and at the bottom is zero.
//
// The source is left as it is, unlocked. Null when memory is short.
frame::OwnedImage ResampleSlice(Image2D* source, std::int32_t newWidth, std::int32_t newHeight);

} // namespace z3d::volume
