// One projection as the kernels see it: plain data, so that the same job runs on any instruction set.
#pragma once

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

struct ProjectionJob {
    RayGeometry geometry;
    VoxelGrid grid;
    float high;
    float low;
    float extra;
    float* pixels;            // outputWidth * outputHeight pixels of three floats, all 0; top row first
    std::int32_t* rowScratch; // kRowScratchInts(outputWidth) integers
};

// Ray ranges of the four rows that a row of packets covers, each with room for one vector too many.
constexpr std::int32_t kPacketSide = 4;
constexpr std::int32_t kRowPadding = 16;
inline std::size_t RowScratchInts(std::int32_t outputWidth) {
    return 2 * kPacketSide * (static_cast<std::size_t>(outputWidth) + kRowPadding);
}

} // namespace z3d::render
