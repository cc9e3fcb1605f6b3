#include "support/HostVolume.h"

#include "frame/Volume3D.h"

#include <cstddef>
#include <cstring>
#include <new>

namespace z3d::test {

HostVolume::HostVolume(const reference::Volume& plain)
    : HostVolume(static_cast<std::uint32_t>(plain.width), static_cast<std::uint32_t>(plain.height),
                 static_cast<std::uint32_t>(plain.depth), static_cast<std::uint32_t>(plain.bytesPerVoxel)) {
    std::uint8_t*** slices = frame::GlobalLock3D(volume_);
    const std::size_t sliceBytes = plain.voxels.size() / static_cast<std::size_t>(plain.depth);
    for (std::size_t z = 0; z < volume_->depth; ++z) {
        std::memcpy(slices[z][0], plain.voxels.data() + z * sliceBytes, sliceBytes);
    }
    frame::GlobalUnlock3D(volume_);
}

HostVolume::HostVolume(std::uint32_t width, std::uint32_t height, std::uint32_t depth,
                       std::uint32_t bytesPerVoxel)
    : volume_(frame::GlobalAlloc3D(width, height, depth, bytesPerVoxel)) {
    if (volume_ == nullptr) throw std::bad_alloc();
}

HostVolume::~HostVolume() { frame::GlobalFree3D(volume_); }

} // namespace z3d::test
