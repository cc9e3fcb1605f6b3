// Images: a handle on a movable block of pixels, and the table of row addresses while it is locked.
// These are the operations behind the exports of the same names; the public header states their contract.
#pragma once

#include "Zentra3DRendering.h"

#include <cstdint>

namespace z3d::frame {

using ::Image2D;

// Width and height count with their low 16 bits. Null when the handle or the pixels cannot be had.
Image2D* GlobalAlloc2D(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerPixel);

// The same, the pixels being whatever they happen to be: for the library's own use, where all are overwritten.
Image2D* AllocUnset2D(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerPixel);

// The table of `height` row addresses; the same table when already locked. Null on failure. When the pixels
// cannot be locked the handle keeps a table of null rows, and a later lock returns that table.
std::uint8_t** GlobalLock2D(Image2D* image);

// 0 when the image was not locked, else the platform's answer: 0 after the last lock of the pixels.
std::int32_t GlobalUnlock2D(Image2D* image);

// Unlocks first where needed; null is ignored.
void GlobalFree2D(Image2D* image);

} // namespace z3d::frame
