// How much one grey voxel differs from its neighbours across the picture plane.
#pragma once

#include "render/Projection.h"
#include "render/voxels/ValueInterval.h"

#include <cstdint>

namespace z3d::render {

class NeighbourContrast {
public:
    Z3D_INLINE NeighbourContrast(const Projection& projection, ValueInterval window)
        : grid_(projection.grid), view_(projection.view), window_(window) {}

    // From the four neighbours one output column or row away from the voxel's indexes; 1 in volumes of fewer than
    // kSmallestScoredDepth slices. `plane` counts voxels from the first one of slice z.
    std::int32_t ScoreAt(std::uint32_t z, std::uint32_t plane) const;

private:
    std::int32_t Difference(std::int32_t value, const double (&point)[3], int column, double sign) const;

    const VoxelGrid& grid_;
    const ProjectionRenderer& view_;
    const ValueInterval window_;
};

} // namespace z3d::render
