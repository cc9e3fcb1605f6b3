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

// Sizes of the table of bounds and of the codes that it is made from: blocks of 2 voxels a side with one border block
// all round. Codes are kept for the few layers of blocks that bounds are just taken over; their rows have room for the
// 8 blocks that a stretch can reach to either side. Behind the last row there is room for vectors that are too long.
struct SkipExtent {
    static constexpr std::int32_t kReach = 9;
    static constexpr std::size_t kRowPadding = 64;
    static constexpr std::int32_t kMostLayers = 12; // 9 that stretches touch, and 3 for the dilation

    std::int32_t blocksX, blocksY, blocksZ;
    std::int32_t layers;       // of codes
    std::size_t stride, layer; // bytes from row to row, whole vectors, and from layer to layer, of codes
    std::size_t boundsStride, boundsLayer; // the same of bounds

    explicit SkipExtent(const VoxelGrid& grid)
        : blocksX((grid.width + 2) / 2 + 1),
          blocksY((grid.height + 2) / 2 + 1),
          blocksZ((grid.depth + 2) / 2 + 1),
          layers(blocksZ < kMostLayers ? blocksZ : kMostLayers),
          stride((static_cast<std::size_t>(blocksX) + 2 * kReach + 31) / 16 * 16),
          layer(stride * static_cast<std::size_t>(blocksY)),
          boundsStride((static_cast<std::size_t>(blocksX) + 15) / 16 * 16),
          boundsLayer(boundsStride * static_cast<std::size_t>(blocksY)) {}
    std::size_t CodeBytes() const { return layer * static_cast<std::size_t>(layers); }
};

// Codes and bounds, about a sixth of the voxels. A size that cannot be had where it does not fit, or where padding makes
// the table of a thin volume larger than the volume twice.
inline std::size_t SkipTableBytes(const VoxelGrid& grid) {
    const SkipExtent extent(grid);
    const auto layers = static_cast<std::uint64_t>(extent.blocksZ);
    const std::uint64_t bytes = std::uint64_t{extent.layer} * static_cast<std::uint32_t>(extent.layers)
                                + extent.boundsLayer * layers + 2 * SkipExtent::kRowPadding;
    const std::uint64_t voxels = std::uint64_t{static_cast<std::uint32_t>(grid.width)}
                                 * static_cast<std::uint32_t>(grid.height)
                                 * static_cast<std::uint32_t>(grid.depth);
    constexpr std::uint64_t kSmall = 1 << 16;
    return bytes <= 2 * voxels + kSmall && bytes < SIZE_MAX ? static_cast<std::size_t>(bytes) : SIZE_MAX;
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

// Indexes of scratch memory are 32-bit. Wider outputs, which only matrices that are no rotations lead to, ask for sizes
// that cannot be had.
constexpr std::int32_t kWidestOutput = INT32_MAX / (2 * kTileSide) - kRowPadding;
inline std::size_t StripScratchBytes(std::int32_t outputWidth) {
    if (outputWidth > kWidestOutput) return SIZE_MAX;
    return 2 * kTileSide * static_cast<std::size_t>(outputWidth);
}
inline std::size_t RowScratchInts(std::int32_t outputWidth) {
    if (outputWidth > kWidestOutput) return SIZE_MAX;
    return 2 * kTileSide * (static_cast<std::size_t>(outputWidth) + kRowPadding);
}

} // namespace z3d::render
