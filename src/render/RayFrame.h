// The frame that all modes share: output image, order of pixels, rays, sampling. A mode is a rule:
//
//   using Voxel = GreyVoxel or RgbVoxel
//   kInitial        what a pixel holds before, and without, a contribution
//   kSamplesPastEnd samples taken beyond the trimmed range
//   Sample          what one voxel does to the pixel; false ends the ray
//   Finish          what is left to do after the last sample
#pragma once

#include "render/LockedVolume.h"
#include "render/ProjectionImage.h"
#include "render/ProjectionRenderer.h"
#include "render/Ray.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace z3d::render {

// One byte, compared and kept as a float.
struct GreyVoxel {
    static constexpr std::size_t kBytes = 1;
    float value;
    explicit GreyVoxel(const std::uint8_t* bytes) : value(bytes[0]) {}
    float WindowValue() const { return value; }
};

// Three bytes, red first. Windows test their sum.
struct RgbVoxel {
    static constexpr std::size_t kBytes = 3;
    std::uint8_t channel[3];
    explicit RgbVoxel(const std::uint8_t* bytes) : channel{bytes[0], bytes[1], bytes[2]} {}
    float WindowValue() const { return static_cast<float>(channel[0] + channel[1] + channel[2]); }
};

// The inclusive intensity window. Written so that a bound that is not a number accepts nothing.
struct InclusiveWindow {
    float low;
    float high;
    bool Contains(float value) const { return value >= low && value <= high; }
};

// The voxel nearest to a coordinate. 0.49 rather than 0.5: a coordinate halfway between two voxels goes to
// the lower one. Coordinates beyond the volume take the border voxel; clamping before the truncation keeps
// every coordinate within the range of an integer.
inline std::int32_t NearestVoxel(float coordinate, std::int32_t size) {
    const double shifted = coordinate + 0.49;
    if (!(shifted > 0)) return 0;
    if (shifted >= size) return size - 1;
    return static_cast<std::int32_t>(shifted);
}

template <class Rule>
class RayFrame {
public:
    RayFrame(const ProjectionRenderer& renderer, const Rule& rule, const std::uint8_t* const* slices)
        : renderer_(renderer), rule_(rule), slices_(slices) {
        for (int axis = 0; axis < 3; ++axis)
            step_[axis] = renderer.inverseRotation2[3 * axis + 2];
    }

    // Rows from the top of the view, where y is largest.
    void RenderInto(float* pixels) const {
        for (std::int32_t j = renderer_.outputHeight - 1; j >= 0; --j) {
            for (std::int32_t i = 0; i < renderer_.outputWidth; ++i, pixels += 3) {
                std::fill_n(pixels, 3, Rule::kInitial);
                Ray ray(renderer_, i, j);
                const DepthRange range = ray.Trim();
                if (!range.IsEmpty()) Walk(ray, range, pixels);
            }
        }
    }

private:
    void Walk(const Ray& ray, DepthRange range, float* pixel) const {
        float point[3];
        ray.PointAt(range.first, point);
        std::int32_t samples = range.last - range.first + 1 + Rule::kSamplesPastEnd;
        while (samples-- > 0 && rule_.Sample(VoxelAt(point), pixel)) {
            for (int axis = 0; axis < 3; ++axis)
                point[axis] += step_[axis];
        }
        rule_.Finish(pixel);
    }

    typename Rule::Voxel VoxelAt(const float (&point)[3]) const {
        const std::int32_t x = NearestVoxel(point[0], renderer_.volumeWidth);
        const std::int32_t y = NearestVoxel(point[1], renderer_.volumeHeight);
        const std::int32_t z = NearestVoxel(point[2], renderer_.volumeDepth);
        const std::size_t index =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(renderer_.volumeWidth)
            + static_cast<std::size_t>(x);
        return typename Rule::Voxel(slices_[z] + index * Rule::Voxel::kBytes);
    }

    const ProjectionRenderer& renderer_;
    const Rule& rule_;
    const std::uint8_t* const* slices_;
    float step_[3]; // one output depth index, in volume axes
};

// A kernel: locks, renders with the rule, hands the image over. Null on any failure.
template <class Rule>
float* RenderWithRule(const ProjectionRenderer& renderer, const Rule& rule) {
    const LockedVolume volume(*renderer.volume);
    if (!volume) return nullptr;
    ProjectionImage image(renderer.outputWidth, renderer.outputHeight);
    if (!image) return nullptr;
    RayFrame<Rule>(renderer, rule, volume.Slices()).RenderInto(image.Pixels());
    return image.Release();
}

} // namespace z3d::render
