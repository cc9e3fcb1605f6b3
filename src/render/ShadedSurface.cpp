// Mode 3, shaded surfaces. A voxel belongs to the material when its value lies strictly inside the window.
// First surface (extra = 0): the shade where a ray first meets the material. Layered surfaces: the sum of the
// shades of all its entries into the material, the n-th, from 0, weighted by extra to the power n. Colour
// scales the voxel's chromaticity (each channel's share of the sum) by the shade.
//
// Departures from the frame:
// - a pixel without a surface holds 0, and the window is strict
// - volumes of 3 and more slices are sampled one voxel inside their border, so that gradients stay inside
// - volumes of 1 or 2 slices are not shaded; the grey first surface then looks at the first sample alone
#include "render/Modes.h"
#include "render/RayFrame.h"
#include "render/SurfaceShade.h"

namespace z3d::render {
namespace {

struct SurfaceRule : FrameDefaults {
    static constexpr float kInitial = 0;
    StrictWindow material;
    const float* view; // viewing direction in volume axes
    bool shaded;

    SurfaceRule(const ProjectionRenderer& renderer, const RenderArguments& arguments)
        : material{arguments.low, arguments.high},
          view(renderer.rotation + 6),
          shaded(renderer.volumeDepth >= kSmallestShadedDepth) {}

    std::int32_t FirstIndex() const { return shaded ? 1 : 0; }

    template <class Voxel>
    double Shade(const SampledVoxel& at) const {
        return shaded ? SurfaceShade<Voxel>(at.grid, at.x, at.y, at.z, view) : 1.0;
    }
};

struct FirstGrey : SurfaceRule {
    using Voxel = Grey;
    using SurfaceRule::SurfaceRule;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        const bool walksOn = shaded;
        if (!material.Contains(Grey::Value(at.bytes))) return walksOn;
        std::fill_n(pixel, 3, static_cast<float>(Shade<Grey>(at)));
        return false;
    }
    void Finish(float*, const State&) const {}
};

struct FirstRgb : SurfaceRule {
    using Voxel = Rgb;
    using SurfaceRule::SurfaceRule;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        const std::int32_t sum = Rgb::Value(at.bytes);
        if (!material.Contains(sum)) return true;
        const double shade = Shade<Rgb>(at);
        for (int c = 0; c < 3; ++c)
            pixel[c] = static_cast<float>(at.bytes[c] * shade / sum);
        return false;
    }
    void Finish(float*, const State&) const {}
};

// Entries into the material: the weight of the next one, kept in single precision.
struct LayeredRule : SurfaceRule {
    struct State {
        float weight = 1;
        bool isInside = false;
    };
    float attenuation;

    LayeredRule(const ProjectionRenderer& renderer, const RenderArguments& arguments)
        : SurfaceRule(renderer, arguments), attenuation(arguments.extra) {}

    // True where this sample enters the material.
    bool Enters(std::int32_t value, State& state) const {
        const bool wasInside = state.isInside;
        state.isInside = material.Contains(value);
        return state.isInside && !wasInside;
    }
};

struct LayeredGrey : LayeredRule {
    using Voxel = Grey;
    using LayeredRule::LayeredRule;

    bool Sample(const SampledVoxel& at, float* pixel, State& state) const {
        if (!Enters(Grey::Value(at.bytes), state)) return true;
        pixel[0] = static_cast<float>(pixel[0] + state.weight * Shade<Grey>(at));
        state.weight *= attenuation;
        return true;
    }
    void Finish(float* pixel, const State&) const { pixel[1] = pixel[2] = pixel[0]; }
};

struct LayeredRgb : LayeredRule {
    using Voxel = Rgb;
    using LayeredRule::LayeredRule;

    bool Sample(const SampledVoxel& at, float* pixel, State& state) const {
        const std::int32_t sum = Rgb::Value(at.bytes);
        if (!Enters(sum, state)) return true;
        const double shade = Shade<Rgb>(at);
        for (int c = 0; c < 3; ++c) {
            pixel[c] = static_cast<float>(pixel[c] + at.bytes[c] * shade * state.weight / sum);
        }
        state.weight *= attenuation;
        return true;
    }
    void Finish(float*, const State&) const {}
};

} // namespace

float* FirstSurfaceGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, FirstGrey(renderer, arguments));
}

float* FirstSurfaceRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, FirstRgb(renderer, arguments));
}

float* LayeredSurfaceGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, LayeredGrey(renderer, arguments));
}

float* LayeredSurfaceRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, LayeredRgb(renderer, arguments));
}

} // namespace z3d::render
