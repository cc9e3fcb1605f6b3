// Mode 3: surfaces of the material (values strictly inside the window), shaded by the angle between the local
// gradient and the viewing direction. Thin volumes (depth 1 and 2) have no gradient: their shade is 1.
#include "reference/ReferenceModes.h"

#include <cmath>

namespace z3d::reference {

namespace {

constexpr int kLeastShadedDepth = 3;

bool IsShaded(const Scene& scene) { return scene.frame.volumeSize[2] >= kLeastShadedDepth; }

// [1, size - 2], so that both neighbours exist. That range is empty in sides below 3; there the second clamp
// keeps the index inside the volume.
int InnerIndex(double coordinate, int size) {
    int index = TruncatedIndex(coordinate);
    index = std::max(index, 1);
    index = std::min(index, size - 2);
    index = std::max(index, 0);
    return std::min(index, size - 1);
}

Voxel SampledVoxel(const Scene& scene, const Point& position) {
    if (!IsShaded(scene)) return NearestVoxel(scene.frame, position);
    const std::array<int, 3>& size = scene.frame.volumeSize;
    return {InnerIndex(position[0], size[0]), InnerIndex(position[1], size[1]),
            InnerIndex(position[2], size[2])};
}

bool IsMaterial(const Scene& scene, int value) {
    const auto v = static_cast<float>(value);
    return v > scene.low && v < scene.high;
}

int SumAt(const Volume& volume, const Voxel& voxel) { return ChannelSum(ColourAt(volume, voxel)); }

using ValueAt = int (*)(const Volume& volume, const Voxel& voxel);

// The value at a neighbour, which is the voxel itself beyond the border.
int NeighbourValue(const Scene& scene, int x, int y, int z, ValueAt valueAt) {
    const std::array<int, 3>& size = scene.frame.volumeSize;
    const Voxel inside = {std::min(std::max(x, 0), size[0] - 1), std::min(std::max(y, 0), size[1] - 1),
                          std::min(std::max(z, 0), size[2] - 1)};
    return valueAt(scene.volume, inside);
}

// In [0, 1] for a rotation; front and back faces alike.
double SurfaceShade(const Scene& scene, const Voxel& voxel, ValueAt valueAt) {
    const auto [x, y, z] = voxel;
    const double gx =
        NeighbourValue(scene, x + 1, y, z, valueAt) - NeighbourValue(scene, x - 1, y, z, valueAt);
    const double gy =
        NeighbourValue(scene, x, y + 1, z, valueAt) - NeighbourValue(scene, x, y - 1, z, valueAt);
    const double gz =
        NeighbourValue(scene, x, y, z + 1, valueAt) - NeighbourValue(scene, x, y, z - 1, valueAt);

    const float q = Stored(gz * gz + gy * gy + gx * gx);
    if (!(q > 0.0f)) return 0.0;
    const Matrix& rotation = scene.frame.rotation;
    const double along =
        gz * Element(rotation, 2, 2) + gy * Element(rotation, 2, 1) + gx * Element(rotation, 2, 0);
    return std::abs(along) / std::sqrt(static_cast<double>(q));
}

} // namespace

void FirstSurfaceGrey(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, 0.0f, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const Voxel voxel = SampledVoxel(scene, position);
            if (IsMaterial(scene, GreyAt(scene.volume, voxel))) {
                pixel[0] = IsShaded(scene) ? Stored(SurfaceShade(scene, voxel, GreyAt)) : 1.0f;
                CopyToAllFloats(pixel);
                return;
            }
            // In thin volumes only the ray's first sample counts; the colour kernel walks on.
            if (!IsShaded(scene)) return;
            StepForward(scene.frame, position);
        }
    });
}

void FirstSurfaceRgb(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, 0.0f, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const Voxel voxel = SampledVoxel(scene, position);
            const std::array<int, 3> colour = ColourAt(scene.volume, voxel);
            if (IsMaterial(scene, ChannelSum(colour))) {
                // A sum of 0 is in the material only below a negative bound and divides to no number.
                const double s = ChannelSum(colour);
                const double shade = IsShaded(scene) ? SurfaceShade(scene, voxel, SumAt) : 1.0;
                for (std::size_t c = 0; c < 3; ++c) {
                    pixel[c] = Stored(colour[c] * shade / s);
                }
                return;
            }
            StepForward(scene.frame, position);
        }
    });
}

void LayeredSurfaceGrey(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, 0.0f, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        float weight = 1.0f;
        bool inside = false;
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const Voxel voxel = SampledVoxel(scene, position);
            const bool material = IsMaterial(scene, GreyAt(scene.volume, voxel));
            if (material && !inside) {
                const double shade = IsShaded(scene) ? SurfaceShade(scene, voxel, GreyAt) : 1.0;
                pixel[0] = Stored(pixel[0] + weight * shade);
                weight = Stored(static_cast<double>(weight) * scene.extra);
            }
            inside = material;
            StepForward(scene.frame, position);
        }
        CopyToAllFloats(pixel);
    });
}

void LayeredSurfaceRgb(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, 0.0f, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        float weight = 1.0f;
        bool inside = false;
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const Voxel voxel = SampledVoxel(scene, position);
            const std::array<int, 3> colour = ColourAt(scene.volume, voxel);
            const bool material = IsMaterial(scene, ChannelSum(colour));
            if (material && !inside) {
                const double s = ChannelSum(colour);
                const double shade = IsShaded(scene) ? SurfaceShade(scene, voxel, SumAt) : 1.0;
                for (std::size_t c = 0; c < 3; ++c) {
                    pixel[c] = Stored(pixel[c] + colour[c] * shade * weight / s);
                }
                weight = Stored(static_cast<double>(weight) * scene.extra);
            }
            inside = material;
            StepForward(scene.frame, position);
        }
    });
}

} // namespace z3d::reference
