#include "render/tables/NeighbourContrast.h"

#include "render/tables/ContrastScores.h"

namespace z3d::render {

std::int32_t NeighbourContrast::ScoreAt(std::uint32_t z, std::uint32_t plane) const {
    if (grid_.depth < kSmallestScoredDepth) return 1;
    const auto width = static_cast<std::uint32_t>(grid_.width);
    const std::int32_t value = grid_.slices[z][plane];
    const double point[3] = {static_cast<double>(plane % width), static_cast<double>(plane / width),
                             static_cast<double>(z)};
    return Difference(value, point, 0, 1) + Difference(value, point, 0, -1) + Difference(value, point, 1, 1)
           + Difference(value, point, 1, -1);
}

// What the voxel at `point`, moved by a column of the inverse rotation, adds to the score of `value`.
std::int32_t NeighbourContrast::Difference(std::int32_t value, const double (&point)[3], int column,
                                           double sign) const {
    const std::int32_t x = NearestVoxel(point[0] + sign * view_.Inverse(0, column), grid_.width);
    const std::int32_t y = NearestVoxel(point[1] + sign * view_.Inverse(1, column), grid_.height);
    const std::int32_t z = NearestVoxel(point[2] + sign * view_.Inverse(2, column), grid_.depth);
    const std::int32_t neighbour = *grid_.At<1>(x, y, z);
    if (neighbour < window_.first || neighbour > window_.last) return 0;
    return neighbour > value ? neighbour - value : value - neighbour;
}

} // namespace z3d::render
