#include "render/LockedVolume.h"

#include "frame/Volume3D.h"

#include <cstddef>
#include <utility>

namespace z3d::render {
namespace {

bool HasUniformSlices(const ::Volume3D& volume) {
    if (volume.width == 0 || volume.height == 0 || volume.depth == 0) return false;
    if (volume.slices == nullptr || volume.slices[0] == nullptr) return false;
    const ::Image2D* first = volume.slices[0];
    for (std::size_t z = 0; z < volume.depth; ++z) {
        const ::Image2D* slice = volume.slices[z];
        if (slice == nullptr || slice->width != volume.width || slice->height != volume.height) return false;
        if (slice->bytesPerPixel != first->bytesPerPixel) return false;
    }
    // A byte count that wrapped at 32 bits left the rows outside their block.
    const std::uint64_t pixels = std::uint64_t{volume.width} * volume.height;
    return pixels * first->bytesPerPixel <= UINT32_MAX;
}

} // namespace

LockedVolume::LockedVolume(::Volume3D& volume) : volume_(volume) {
    if (!HasUniformSlices(volume)) return;
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
