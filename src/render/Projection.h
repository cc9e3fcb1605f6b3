// One projection as kernels see it: what is to be rendered, from what, and where to.
#pragma once

#include "render/ProjectionRenderer.h"
#include "render/SkipPolicy.h"
#include "render/voxels/VoxelGrid.h"

namespace z3d::render {

// What a pixel holds that received no contribution, by mode.
constexpr float kLowestFloat = -3.4028234663852886e38f;
constexpr float kHighestFloat = 3.4028234663852886e38f;

// Made once per call, when the volume is locked and the image allocated, and handed down by reference.
struct Projection {
    const ProjectionRenderer& view; // rotation, output size and crop box
    VoxelGrid grid;
    RenderArguments arguments;
    float* pixels; // outputWidth * outputHeight pixels of three floats, all 0; top row first
    SkipPolicy skipPolicy;

    Z3D_INLINE float* PixelAt(std::int32_t row, std::int32_t column) const {
        const auto width = static_cast<std::size_t>(view.outputWidth);
        return pixels + 3 * (static_cast<std::size_t>(row) * width + static_cast<std::size_t>(column));
    }
};

} // namespace z3d::render
