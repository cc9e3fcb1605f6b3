// Mode 5: the largest difference between a voxel of the ray and its neighbours across the picture plane,
// among the voxels strictly inside the window. The border of the output is not rendered and stays 0.
#include "reference/ReferenceModes.h"

#include <cmath>

namespace z3d::reference {

namespace {

constexpr int kUnrenderedBorder = 1;
// Thinner volumes show a mask of the window: every accepted voxel scores 1.
constexpr int kLeastMeasuredDepth = 3;

bool IsMeasured(const Scene& scene) { return scene.frame.volumeSize[2] >= kLeastMeasuredDepth; }

bool IsInside(const Scene& scene, int value) {
    const auto v = static_cast<float>(value);
    return v > scene.low && v < scene.high;
}

// The voxel at the position moved by `steps` output columns (column 0) or rows (column 1).
Voxel NeighbourVoxel(const Scene& scene, const Point& position, int column, double steps) {
    std::array<double, 3> moved = {};
    for (int row = 0; row < 3; ++row) {
        const auto axis = static_cast<std::size_t>(row);
        moved[axis] = position[axis] + steps * Element(scene.frame.inverseRotation, row, column);
    }
    return NearestVoxel(scene.frame, moved);
}

// Four neighbours, measured from the voxel's own indexes.
double NeighbourContrast(const Scene& scene, const Voxel& voxel) {
    const Point position = {static_cast<float>(voxel.x), static_cast<float>(voxel.y),
                            static_cast<float>(voxel.z)};
    const int centre = GreyAt(scene.volume, NearestVoxel(scene.frame, position));
    double score = 0.0;
    for (const int column : {0, 1}) {
        for (const double steps : {1.0, -1.0}) {
            const int neighbour = GreyAt(scene.volume, NeighbourVoxel(scene, position, column, steps));
            if (IsInside(scene, neighbour)) score += std::abs(neighbour - centre);
        }
    }
    return score;
}

// Only the neighbour one output column to the right, measured from the sample position itself.
double NeighbourContrastRgb(const Scene& scene, const Point& position) {
    const int centre = ChannelSum(ColourAt(scene.volume, NearestVoxel(scene.frame, position)));
    const int neighbour = ChannelSum(ColourAt(scene.volume, NeighbourVoxel(scene, position, 0, 1.0)));
    return IsInside(scene, neighbour) ? std::abs(neighbour - centre) : 0.0;
}

} // namespace

void ContrastProjectionGrey(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, -kLargest, kUnrenderedBorder, pixels, [&scene](const Ray& ray, float* pixel) {
        float best = -kLargest;
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const Voxel voxel = NearestVoxel(scene.frame, position);
            if (IsInside(scene, GreyAt(scene.volume, voxel))) {
                const double score = IsMeasured(scene) ? NeighbourContrast(scene, voxel) : 1.0;
                if (score > best) best = Stored(score);
            }
            StepForward(scene.frame, position);
        }
        // A ray whose voxels all score 0 counts as empty.
        if (best > 0.0f) {
            pixel[0] = best;
            CopyToAllFloats(pixel);
        }
    });
}

void ContrastProjectionRgb(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, -kLargest, kUnrenderedBorder, pixels, [&scene](const Ray& ray, float* pixel) {
        float best = -kLargest;
        std::array<int, 3> remembered = {1, 1, 1};
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const std::array<int, 3> colour = ColourAt(scene.volume, NearestVoxel(scene.frame, position));
            if (IsInside(scene, ChannelSum(colour))) {
                const double score = IsMeasured(scene) ? NeighbourContrastRgb(scene, position) : 1.0;
                if (score > best) {
                    best = Stored(score);
                    remembered = colour;
                }
            }
            StepForward(scene.frame, position);
        }
        // Black has no proportions to keep: such a pixel counts as empty too.
        if (best > 0.0f && ChannelSum(remembered) != 0) {
            for (std::size_t c = 0; c < 3; ++c) {
                pixel[c] = Stored(static_cast<double>(remembered[c]) * best / ChannelSum(remembered));
            }
        }
    });
}

} // namespace z3d::reference
