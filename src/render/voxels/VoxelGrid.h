// Voxel addressing and the nearest voxel to a coordinate.
#pragma once

#include "render/voxels/Inline.h"

#include <cstddef>
#include <cstdint>

namespace z3d::render {

// Slice z begins `offsets[z]`, a signed number, behind `origin` (SliceOffsets). Without offsets, by its address.
struct GatheredSlices {
    std::uintptr_t origin = 0;
    const std::uint32_t* offsets = nullptr;
};

// The locked voxels of a volume.
struct VoxelGrid {
    const std::uint8_t* const* slices; // `depth` addresses; the rows of a slice follow each other
    std::int32_t width;
    std::int32_t height;
    std::int32_t depth;
    bool isGathered = false; // by single instructions: only where the instruction set in use is Avx512Gather
    GatheredSlices gathered = {}; // then

    // The bytes of voxel (x, y, z), which must exist.
    template <int kBytesPerVoxel>
    Z3D_INLINE const std::uint8_t* At(std::int32_t x, std::int32_t y, std::int32_t z) const {
        const std::size_t index =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
        return slices[z] + index * kBytesPerVoxel;
    }
};

// The voxel nearest to a coordinate, for an axis of `size` voxels. 0.49 rather than 0.5: a coordinate halfway
// between two voxels goes to the lower one. Coordinates beyond the volume take its border voxel; clamping
// before the truncation keeps every coordinate within the range of an integer.
Z3D_INLINE std::int32_t NearestVoxel(double coordinate, std::int32_t size) {
    const double shifted = coordinate + 0.49;
    if (!(shifted > 0)) return 0;
    if (shifted >= size) return size - 1;
    return static_cast<std::int32_t>(shifted);
}

Z3D_INLINE std::int32_t ClampToAxis(std::int32_t index, std::int32_t size) {
    if (index < 0) return 0;
    return index < size ? index : size - 1;
}

} // namespace z3d::render
