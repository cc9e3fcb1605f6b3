// Volumes: a stack of equal-sized images. The operations behind the exports of the same names.
#pragma once

#include "Zentra3DRendering.h"

#include <cstddef>
#include <cstdint>

namespace z3d::frame {

using ::Volume3D;

// The three sizes count with their low 16 bits. With 0 bytes per pixel or depth 0 every slice is null and no
// pixel memory is taken: such a volume gets its slices attached later. Null on failure, nothing kept.
Volume3D* GlobalAlloc3D(std::uint32_t width, std::uint32_t height, std::uint32_t depth,
                        std::uint32_t bytesPerPixel);

// Locks every slice; the table of `depth` row tables, or null with every slice unlocked again.
std::uint8_t*** GlobalLock3D(Volume3D* volume);

// 1 when the volume was not locked; else 0 as soon as one slice's pixels lost their last lock.
std::int32_t GlobalUnlock3D(Volume3D* volume);

// Frees the slice at z, when there is one, and clears its entry: for volumes that are consumed slice by slice.
void FreeSlice(Volume3D* volume, std::size_t z);

// Unlocks first where needed, frees the slices that are present; null is ignored.
void GlobalFree3D(Volume3D* volume);

} // namespace z3d::frame
