// Mode 4: every voxel inside the window is blended over what lies behind it. The walk is from the far end to
// the viewer, and a sample's weight grows with its own brightness.
#include "reference/ReferenceModes.h"

#include <bit>

namespace z3d::reference {

namespace {

// The floats nearest to 1/255 and 1/765.
constexpr float kPerGreyLevel = 0.003921569f;
constexpr float kPerSumLevel = 0.0013071896f;
static_assert(kPerGreyLevel == static_cast<float>(1.0 / 255.0));
static_assert(kPerSumLevel == static_cast<float>(1.0 / 765.0));

// A transparency of exactly 1 would take all weight from every sample.
float EffectiveTransparency(float transparency) { return transparency == 1.0f ? 0.95f : transparency; }

bool HoldsInitialValue(float value) {
    return std::bit_cast<std::uint32_t>(value) == std::bit_cast<std::uint32_t>(-kLargest);
}

} // namespace

void TranslucentBlendGrey(const Scene& scene, std::vector<float>& pixels) {
    const double t = EffectiveTransparency(scene.extra);
    ForEachRay(scene.frame, -kLargest, 0, pixels, [&scene, t](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.lastDepth);
        for (std::int64_t k = ray.lastDepth; k >= ray.firstDepth; --k) {
            const auto v = static_cast<float>(GreyAt(scene.volume, NearestVoxel(scene.frame, position)));
            // Skipping what is outside lets a bound that is not a number pass everything.
            if (!(v < scene.low || v > scene.high)) {
                if (HoldsInitialValue(pixel[0])) pixel[0] = 0.0f;
                const double value = v;
                const float weight = Stored(value * kPerGreyLevel * (1.0 - t));
                const double w = weight;
                pixel[0] = Stored((1.0 - w) * pixel[0] + w * value);
            }
            StepBackward(scene.frame, position);
        }
        CopyToAllFloats(pixel);
    });
}

void TranslucentBlendRgb(const Scene& scene, std::vector<float>& pixels) {
    const double t = EffectiveTransparency(scene.extra);
    ForEachRay(scene.frame, -kLargest, 0, pixels, [&scene, t](const Ray& ray, float* pixel) {
        Point position = PositionAt(scene.frame, ray, ray.lastDepth);
        for (std::int64_t k = ray.lastDepth; k >= ray.firstDepth; --k) {
            const std::array<int, 3> colour = ColourAt(scene.volume, NearestVoxel(scene.frame, position));
            const auto s = static_cast<float>(ChannelSum(colour));
            if (!(s < scene.low || s > scene.high)) {
                if (HoldsInitialValue(pixel[0])) {
                    pixel[0] = 0.0f;
                    pixel[1] = 0.0f;
                    pixel[2] = 0.0f;
                }
                // Unlike the grey weight this one is not rounded to a float.
                const double w = static_cast<double>(s) * kPerSumLevel * (1.0 - t);
                for (std::size_t c = 0; c < 3; ++c) {
                    pixel[c] = Stored((1.0 - w) * pixel[c] + w * colour[c]);
                }
            }
            StepBackward(scene.frame, position);
        }
    });
}

} // namespace z3d::reference
