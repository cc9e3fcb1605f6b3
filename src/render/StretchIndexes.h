// Where the rays of a packet are, and which voxels their samples take.
#pragma once

#include "render/Traversal.h"

#include <cstdint>

namespace z3d::render {

// Where the next sample of each ray lies, in volume index space.
struct alignas(64) Positions {
    float axis[3][kRays];
};

// Voxel indexes of a stretch. `plane` counts voxels from the first one of slice z.
struct alignas(64) Indexes {
    std::uint32_t z[kSamples][kRays];
    std::uint32_t plane[kSamples][kRays];
    float position[3][kSamples][kRays]; // filled on request
};

} // namespace z3d::render
