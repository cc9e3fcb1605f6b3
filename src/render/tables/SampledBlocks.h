// The blocks that rays can sample: those in and around the crop box.
#pragma once

#include "render/ProjectionRenderer.h"
#include "render/voxels/VoxelGrid.h"

namespace z3d::render {

// Blocks of voxels, counted from one border block before the volume. Axes are x, y, z.
struct SampledBlocks {
    std::int32_t first[3];
    std::int32_t last[3];

    SampledBlocks(const ProjectionRenderer& view, const VoxelGrid& grid);

    // How many voxels there are in them.
    double Voxels() const;
};

} // namespace z3d::render
