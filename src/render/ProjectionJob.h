// One projection as the kernels see it: plain data, so that the same job runs on any instruction set.
#pragma once

#include "render/SkipPolicy.h"
#include "render/Voxels.h"

#include <cstdint>

namespace z3d::render {

// What a pixel holds that received no contribution, by mode.
constexpr float kLowestFloat = -3.4028234663852886e38f;
constexpr float kHighestFloat = 3.4028234663852886e38f;

// Rotation, output size and crop box, in the order x, y, z.
struct RayGeometry {
    float inverse[9];  // centred volume space from view space; column 2 is the step of a ray
    float view[3];     // viewing direction in volume axes
    float centre[3];   // of the volume, in voxels
    float halfSize[3]; // of the output
    float cropLow[3];  // in centred volume space
    float cropHigh[3];
    std::int32_t outputWidth;
    std::int32_t outputHeight;
    std::int32_t outputDepth;
};

// Size of the table of bounds: blocks of 2 voxels a side with one border block all round. Rows have room for the
// 8 blocks that a stretch can reach to either side, and for one vector too many.
struct SkipExtent {
    static constexpr std::int32_t kReach = 9;
    static constexpr std::size_t kRowPadding = 64;

    std::int32_t blocksX, blocksY, blocksZ;
    std::size_t stride; // bytes from row to row, whole vectors
    std::size_t slab;   // bytes from one layer of blocks to the next

    explicit SkipExtent(const VoxelGrid& grid)
        : blocksX((grid.width + 2) / 2 + 1),
          blocksY((grid.height + 2) / 2 + 1),
          blocksZ((grid.depth + 2) / 2 + 1),
          stride((static_cast<std::size_t>(blocksX) + 2 * kReach + 31) / 16 * 16),
          slab(stride * static_cast<std::size_t>(blocksY)) {}
    std::size_t Bytes() const { return slab * static_cast<std::size_t>(blocksZ); }
};

// Codes and bounds. A size that cannot be had where the bytes do not fit: the padding of its rows can make the
// table of a thin volume many times larger than the volume.
inline std::size_t SkipTableBytes(const VoxelGrid& grid) {
    const SkipExtent extent(grid);
    const std::size_t padding = 2 * SkipExtent::kRowPadding;
    if (extent.slab > (SIZE_MAX - padding) / 2 / static_cast<std::size_t>(extent.blocksZ)) return SIZE_MAX;
    return 2 * extent.Bytes() + padding;
}

// What the bounds of skipped stretches are about: large values, small values, or only whether any voxel lies in
// the window.
enum class Measure { Presence, Largeness, Smallness };

struct ProjectionJob {
    RayGeometry geometry;
    VoxelGrid grid;
    float high;
    float low;
    float extra;
    float* pixels;              // outputWidth * outputHeight pixels of three floats, all 0; top row first
    std::int32_t* rowScratch;   // RowScratchInts(outputWidth) integers
    std::uint8_t* stripScratch; // StripScratchBytes(outputWidth) bytes
    std::uint8_t* skipMemory;   // SkipTableBytes(grid) bytes, or null where memory is short
    SkipPolicy skipPolicy;
};

// Packets are rendered tile by tile, so that neighbouring rays find the voxels that they share in the cache: bands of
// rows, and tiles as wide within a band. Scratch memory is for the rays of one band; its rows have room for one vector
// too many.
constexpr std::int32_t kPacketSide = 4;
constexpr std::int32_t kTileSide = 32;
constexpr std::int32_t kRowPadding = 16;
inline std::size_t StripScratchBytes(std::int32_t outputWidth) {
    return 2 * kTileSide * static_cast<std::size_t>(outputWidth);
}
inline std::size_t RowScratchInts(std::int32_t outputWidth) {
    return 2 * kTileSide * (static_cast<std::size_t>(outputWidth) + kRowPadding);
}

} // namespace z3d::render
