// The kernels by mode and voxel format. There is one table per instruction set, all with the same results.
#pragma once

#include <cstdint>

namespace z3d::render {

struct ProjectionJob;

// Renders one projection into the job's pixels. Cannot fail.
using Kernel = void(const ProjectionJob& job);

struct ModeKernels {
    Kernel* grey;
    Kernel* colour;
};

constexpr std::int32_t kModeCount = 7;
constexpr std::int32_t kSurfaceMode = 3;

struct KernelTable {
    ModeKernels modes[kModeCount];
    ModeKernels layeredSurface; // mode 3 with an attenuation
};

} // namespace z3d::render
