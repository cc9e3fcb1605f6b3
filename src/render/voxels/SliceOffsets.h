// Slices as a gather takes them: it adds signed offsets of 32 bits to one address.
#pragma once

#include "platform/Heap.h"
#include "render/voxels/VoxelGrid.h"

#include <cstdint>

namespace z3d::render {

// Slices that lie within four gigabytes have offsets from the middle of those; others have none, and neither have any
// where memory is short. In 32 bits none are made: addresses are such offsets, from 0.
class SliceOffsets {
public:
    SliceOffsets() = default;
    // For `depth` slices, at least one, which the object does not outlive.
    SliceOffsets(const std::uint8_t* const* slices, std::int32_t depth, std::uint64_t sliceBytes);

    GatheredSlices Get() const { return slices_; }

private:
    GatheredSlices slices_;
    platform::HeapArray<std::uint32_t> offsets_;
};

} // namespace z3d::render
