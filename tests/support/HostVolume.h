// A Volume3D as a host would make it, freed at the end of its scope.
#pragma once

#include "reference/ReferenceRenderer.h"

#include "Zentra3DRendering.h"

#include <cstdint>

namespace z3d::test {

class HostVolume {
public:
    // The same voxels as the plain volume. Throws std::bad_alloc when memory is short, as the other one does.
    explicit HostVolume(const reference::Volume& plain);
    // Zeroes.
    HostVolume(std::uint32_t width, std::uint32_t height, std::uint32_t depth, std::uint32_t bytesPerVoxel);
    ~HostVolume();
    HostVolume(const HostVolume&) = delete;
    HostVolume& operator=(const HostVolume&) = delete;

    ::Volume3D* Get() const { return volume_; }
    ::Volume3D* operator->() const { return volume_; }

private:
    ::Volume3D* volume_;
};

} // namespace z3d::test
