// Mode 0: the largest voxel of the ray among those inside the window.
#include "reference/ReferenceModes.h"

namespace z3d::reference {

namespace {

// The grey maximum takes one sample past the trimmed range, on purpose.
constexpr int kGreySamplesPastEnd = 1;

} // namespace

void MaxProjectionGrey(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, -kLargest, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth + kGreySamplesPastEnd; ++k) {
            const auto v = static_cast<float>(GreyAt(scene.volume, NearestVoxel(scene.frame, position)));
            if (v >= scene.low && v <= scene.high && v > pixel[0]) pixel[0] = v;
            StepForward(scene.frame, position);
        }
        CopyToAllFloats(pixel);
    });
}

void MaxProjectionRgb(const Scene& scene, std::vector<float>& pixels) {
    ForEachRay(scene.frame, -kLargest, 0, pixels, [&scene](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.firstDepth);
        for (std::int64_t k = ray.firstDepth; k <= ray.lastDepth; ++k) {
            const std::array<int, 3> colour = ColourAt(scene.volume, NearestVoxel(scene.frame, position));
            const auto s = static_cast<float>(ChannelSum(colour));
            if (s >= scene.low && s <= scene.high) {
                for (std::size_t c = 0; c < 3; ++c) {
                    const auto b = static_cast<float>(colour[c]);
                    if (b > pixel[c]) pixel[c] = b;
                }
            }
            StepForward(scene.frame, position);
        }
    });
}

} // namespace z3d::reference
