// Mode 6: the first voxel of the ray that is inside the window.
#include "reference/ReferenceModes.h"

namespace z3d::reference {

void FirstHitGrey(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, -kLargest, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const auto v = static_cast<float>(GreyAt(scene.volume, NearestVoxel(scene.frame, position)));
            if (v >= scene.low && v <= scene.high) {
                pixel[0] = v;
                pixel[1] = v;
                pixel[2] = v;
                return;
            }
            StepForward(scene.frame, position);
        }
    });
}

void FirstHitRgb(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, -kLargest, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const std::array<int, 3> colour = ColourAt(scene.volume, NearestVoxel(scene.frame, position));
            const auto s = static_cast<float>(ChannelSum(colour));
            if (s >= scene.low && s <= scene.high) {
                for (std::size_t c = 0; c < 3; ++c) {
                    pixel[c] = static_cast<float>(colour[c]);
                }
                return;
            }
            StepForward(scene.frame, position);
        }
    });
}

} // namespace z3d::reference
