// Mode 2: the sum of the ray's voxels inside the window. The sentinel becomes a running sum at the first of
// them, so a pixel without any keeps it.
#include "reference/ReferenceModes.h"

namespace z3d::reference {

void SumProjectionGrey(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, -kLargest, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const auto v = static_cast<float>(GreyAt(scene.volume, NearestVoxel(scene.frame, position)));
            if (v >= scene.low && v <= scene.high) {
                if (pixel[0] < 0.0f) pixel[0] = 0.0f;
                pixel[0] = pixel[0] + v;
            }
            StepForward(scene.frame, position);
        }
        CopyToAllFloats(pixel);
    });
}

void SumProjectionRgb(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, -kLargest, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const std::array<int, 3> colour = ColourAt(scene.volume, NearestVoxel(scene.frame, position));
            const auto s = static_cast<float>(ChannelSum(colour));
            if (s >= scene.low && s <= scene.high) {
                for (std::size_t c = 0; c < 3; ++c) {
                    if (pixel[c] < 0.0f) pixel[c] = 0.0f;
                    pixel[c] = pixel[c] + static_cast<float>(colour[c]);
                }
            }
            StepForward(scene.frame, position);
        }
    });
}

} // namespace z3d::reference
