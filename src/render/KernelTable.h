// The kernels by mode and voxel format. There is one table per instruction set, all with the same results.
#pragma once

#include <cstdint>

namespace z3d::render {

struct Projection;

// Renders one projection into its pixels. Cannot fail.
using Kernel = void(const Projection& projection);

struct ModeKernels {
    Kernel* grey;
    Kernel* colour;
};

struct KernelTable {
    ModeKernels maximum;
    ModeKernels minimum;
    ModeKernels sum;
    ModeKernels firstSurface;
    ModeKernels layeredSurface;
    ModeKernels blend;
    ModeKernels contrast;
    ModeKernels firstHit;
};

// Null for an unknown mode. `extra` chooses between the two kinds of surface.
const ModeKernels* KernelsOfMode(const KernelTable& table, std::int32_t mode, float extra);

} // namespace z3d::render
