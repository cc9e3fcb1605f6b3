// How many blocks a volume has, and how their codes and bounds lie in memory.
#pragma once

#include "render/voxels/VoxelGrid.h"

#include <cstddef>
#include <cstdint>

namespace z3d::render {

constexpr std::int32_t kBlockSide = 4; // voxels

// Blocks, with one border block all round. Codes are kept for the few layers of blocks that bounds are just taken over;
// their rows have room for the 4 blocks that a stretch can reach to either side. Behind the last row there is room for
// vectors that are too long.
struct BlockExtent {
    static constexpr std::int32_t kReach = 5; // 4 blocks, and 1 for the dilation
    static constexpr std::size_t kRowPadding = 64;
    static constexpr std::int32_t kMostLayers = 6; // 5 that stretches touch, and 1 for the dilation

    std::int32_t blocksX, blocksY, blocksZ;
    std::int32_t layers;       // of codes
    std::size_t stride, layer; // bytes from row to row, whole vectors, and from layer to layer, of codes
    std::size_t boundsStride, boundsLayer; // the same of bounds

    explicit BlockExtent(const VoxelGrid& grid);

    // More than any memory: what a table that does not fit, or is not worth its memory, is said to need.
    static constexpr std::size_t kNeverFits = SIZE_MAX;

    std::size_t CodeBytes() const { return layer * static_cast<std::size_t>(layers); }

    // Of codes and bounds together, about a fiftieth of the voxels. kNeverFits where they are more than memory can
    // hold, or where padding makes the table of a thin volume larger than the volume twice.
    std::size_t TableBytes(const VoxelGrid& grid) const;
};

} // namespace z3d::render
