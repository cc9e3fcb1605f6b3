// The frame that all modes share: the output image, the order of pixels, the ray of each pixel and the samples
// along it. A mode is a rule that derives from FrameDefaults and says how it differs:
//
//   Voxel               Grey or Rgb
//   State               what a ray carries besides its pixel
//   Sample(...)         what one sample does; false ends the ray
//   Finish(...)         what is left to do after the last sample
#pragma once

#include "render/LockedVolume.h"
#include "render/ProjectionImage.h"
#include "render/ProjectionRenderer.h"
#include "render/Ray.h"
#include "render/Voxels.h"

#include <algorithm>

namespace z3d::render {

// One sample of a ray.
struct SampledVoxel {
    const VoxelGrid& grid;
    const std::uint8_t* bytes; // of the nearest voxel
    std::int32_t x, y, z;      // its indexes
    const float* point;        // the unrounded position, in volume index space
};

struct FrameDefaults {
    struct State {};
    static constexpr float kInitial = kLowestFloat;    // the pixel before, and without, a contribution
    static constexpr std::int32_t kSamplesPastEnd = 0; // samples beyond the trimmed range
    static constexpr bool kBackToFront = false;
    static constexpr std::int32_t kBorder = 0; // output pixels at each edge that are left 0

    // The smallest voxel index that is sampled on every axis; the largest lies as far from the other end.
    std::int32_t FirstIndex() const { return 0; }
};

template <class Rule>
class RayFrame {
public:
    RayFrame(const ProjectionRenderer& renderer, const Rule& rule, const VoxelGrid& grid)
        : renderer_(renderer), rule_(rule), grid_(grid) {
        for (int axis = 0; axis < 3; ++axis) {
            const float step = renderer.inverseRotation2[3 * axis + 2];
            step_[axis] = Rule::kBackToFront ? -step : step;
        }
    }

    // Rows from the top of the view, where y is largest.
    void RenderInto(float* pixels) const {
        const std::int32_t width = renderer_.outputWidth;
        const std::int32_t height = renderer_.outputHeight;
        for (std::int32_t j = height - 1 - Rule::kBorder; j >= Rule::kBorder; --j) {
            float* row =
                pixels + 3 * static_cast<std::size_t>(height - 1 - j) * static_cast<std::size_t>(width);
            for (std::int32_t i = Rule::kBorder; i < width - Rule::kBorder; ++i) {
                float* pixel = row + 3 * static_cast<std::size_t>(i);
                std::fill_n(pixel, 3, Rule::kInitial);
                Ray ray(renderer_, i, j);
                const DepthRange range = ray.Trim();
                if (!range.IsEmpty()) Walk(ray, range, pixel);
            }
        }
    }

private:
    void Walk(const Ray& ray, DepthRange range, float* pixel) const {
        // The position is carried from sample to sample in floats, and rounded to them at each step.
        float point[3];
        ray.PointAt(Rule::kBackToFront ? range.last : range.first, point);
        typename Rule::State state{};
        std::int32_t samples = range.last - range.first + 1 + Rule::kSamplesPastEnd;
        while (samples-- > 0 && rule_.Sample(VoxelAt(point), pixel, state)) {
            for (int axis = 0; axis < 3; ++axis)
                point[axis] += step_[axis];
        }
        rule_.Finish(pixel, state);
    }

    SampledVoxel VoxelAt(const float (&point)[3]) const {
        const std::int32_t x = Index(point[0], grid_.width);
        const std::int32_t y = Index(point[1], grid_.height);
        const std::int32_t z = Index(point[2], grid_.depth);
        return {grid_, grid_.At<Rule::Voxel::kBytes>(x, y, z), x, y, z, point};
    }

    std::int32_t Index(float coordinate, std::int32_t size) const {
        const std::int32_t first = rule_.FirstIndex();
        const std::int32_t nearest = NearestVoxel(coordinate, size);
        // An axis too short for the margin has no inner voxel: the second clamp keeps the sample inside.
        return ClampToAxis(std::min(std::max(nearest, first), size - 1 - first), size);
    }

    const ProjectionRenderer& renderer_;
    const Rule& rule_;
    const VoxelGrid& grid_;
    float step_[3]; // from one sample to the next, in volume axes
};

// A kernel: locks, renders with the rule, hands the image over. Null on any failure.
template <class Rule>
float* RenderWithRule(const ProjectionRenderer& renderer, const Rule& rule) {
    const LockedVolume volume(*renderer.volume);
    if (!volume) return nullptr;
    ProjectionImage image(renderer.outputWidth, renderer.outputHeight);
    if (!image) return nullptr;
    const VoxelGrid grid = {volume.Slices(), renderer.volumeWidth, renderer.volumeHeight,
                            renderer.volumeDepth};
    RayFrame<Rule>(renderer, rule, grid).RenderInto(image.Pixels());
    return image.Release();
}

} // namespace z3d::render
