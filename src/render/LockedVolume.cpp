#include "render/LockedVolume.h"

#include "frame/Volume3D.h"

#include <cstddef>
#include <utility>

namespace z3d::render {

bool LockedVolume::HasReadableSlices() const {
    const std::uint64_t pixels = std::uint64_t{volume_.width} * volume_.height;
    for (std::size_t z = 0; z < volume_.depth; ++z) {
        const ::Image2D* slice = volume_.slices[z];
        if (slice == nullptr || slice->width != volume_.width || slice->height != volume_.height)
            return false;
        if (slice->bytesPerPixel < (isColour_ ? 3u : 1u)) return false;
        // A byte count that wrapped at 32 bits left the rows outside their block.
        if (pixels * slice->bytesPerPixel > UINT32_MAX) return false;
    }
    return true;
}

LockedVolume::LockedVolume(::Volume3D& volume) : volume_(volume) {
    if (volume.width == 0 || volume.height == 0 || volume.depth == 0) return;
    if (volume.slices == nullptr || volume.slices[0] == nullptr) return;
    isColour_ = volume.slices[0]->bytesPerPixel == 3;
    if (!HasReadableSlices()) return;
    std::uint8_t*** rows = frame::GlobalLock3D(&volume);
    if (rows == nullptr) return;

    platform::HeapArray<const std::uint8_t*> slices(volume.depth);
    if (!slices) return;
    for (std::size_t z = 0; z < volume.depth; ++z) {
        // An earlier failed lock leaves a table of null rows behind.
        if (rows[z] == nullptr || rows[z][0] == nullptr) return;
        slices[z] = rows[z][0];
    }
    slices_ = std::move(slices);
}

LockedVolume::~LockedVolume() { frame::GlobalUnlock3D(&volume_); }

} // namespace z3d::render
