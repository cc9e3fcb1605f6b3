// A volume's voxels for the time of one projection.
#pragma once

#include "Zentra3DRendering.h"

#include "platform/Heap.h"

#include <cstdint>

namespace z3d::render {

// Locks the volume, and unlocks it in every case, whoever had locked it before. Empty when the volume cannot
// be rendered: a slice is missing, differs from the volume in size, cannot be locked, or its block is too small for
// what kernels read. Those read 3 bytes per voxel where the first slice has 3, and 1 otherwise, from every slice's
// first byte on, whatever its own format.
class LockedVolume {
public:
    explicit LockedVolume(::Volume3D& volume);
    ~LockedVolume();
    LockedVolume(const LockedVolume&) = delete;
    LockedVolume& operator=(const LockedVolume&) = delete;

    explicit operator bool() const { return static_cast<bool>(slices_); }

    // `depth` addresses: the first voxel of each slice. Rows follow each other without padding.
    const std::uint8_t* const* Slices() const { return slices_.Get(); }

    // Whether the first slice has 3 bytes per voxel.
    bool IsColour() const { return isColour_; }

private:
    bool HasReadableSlices() const;

    ::Volume3D& volume_;
    bool isColour_ = false;
    platform::HeapArray<const std::uint8_t*> slices_;
};

} // namespace z3d::render
