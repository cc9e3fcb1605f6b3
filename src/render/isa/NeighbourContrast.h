// How much a grey voxel differs from its neighbours across the picture plane.
#pragma once

#include "render/isa/Samples.h"

namespace z3d::render::Z3D_ISA {

// Volumes of fewer slices are not scored: every voxel in the window counts 1.
constexpr std::int32_t kSmallestScoredDepth = 3;

class NeighbourContrast {
public:
    NeighbourContrast(const ProjectionJob& job, ValueRange window)
        : grid_(job.grid), inverse_(job.geometry.inverse), window_(window) {}

    // From the four neighbours one output column or row away from the voxel's indexes.
    std::int32_t ScoreAt(const SampleIndexes& at, int ray) const {
        if (grid_.depth < kSmallestScoredDepth) return 1;
        const auto width = static_cast<std::uint32_t>(grid_.width);
        const std::uint32_t plane = at.Plane(ray);
        const std::int32_t value = grid_.slices[at.Z(ray)][plane];
        const double point[3] = {static_cast<double>(plane % width), static_cast<double>(plane / width),
                                 static_cast<double>(at.Z(ray))};
        return Difference(value, point, 0, 1) + Difference(value, point, 0, -1)
               + Difference(value, point, 1, 1) + Difference(value, point, 1, -1);
    }

private:
    // What the voxel at `point`, moved by a column of the inverse rotation, adds to the score of `value`.
    std::int32_t Difference(std::int32_t value, const double (&point)[3], int column, double sign) const {
        const std::int32_t x = NearestVoxel(point[0] + sign * inverse_[column], grid_.width);
        const std::int32_t y = NearestVoxel(point[1] + sign * inverse_[3 + column], grid_.height);
        const std::int32_t z = NearestVoxel(point[2] + sign * inverse_[6 + column], grid_.depth);
        const std::int32_t neighbour = *grid_.At<1>(x, y, z);
        if (neighbour < window_.first || neighbour > window_.last) return 0;
        return neighbour > value ? neighbour - value : value - neighbour;
    }

    const VoxelGrid& grid_;
    const float* inverse_;
    const ValueRange window_;
};

} // namespace z3d::render::Z3D_ISA
