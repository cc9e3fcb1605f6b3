// Mode 6, first hit: the voxel nearest the viewer that lies in the window, unshaded.
//
// Departures from the frame:
// - the first accepted voxel ends the ray
// - colour tests the window on the channel sum and writes that voxel's own channels
#include "render/Modes.h"
#include "render/RayFrame.h"

namespace z3d::render {
namespace {

struct HitGrey : FrameDefaults {
    using Voxel = Grey;
    InclusiveWindow window;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        if (!window.Contains(Grey::Value(at.bytes))) return true;
        std::fill_n(pixel, 3, static_cast<float>(at.bytes[0]));
        return false;
    }
    void Finish(float*, const State&) const {}
};

struct HitRgb : FrameDefaults {
    using Voxel = Rgb;
    InclusiveWindow window;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        if (!window.Contains(Rgb::Value(at.bytes))) return true;
        for (int c = 0; c < 3; ++c)
            pixel[c] = static_cast<float>(at.bytes[c]);
        return false;
    }
    void Finish(float*, const State&) const {}
};

} // namespace

float* FirstHitGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, HitGrey{{}, {arguments.low, arguments.high}});
}

float* FirstHitRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, HitRgb{{}, {arguments.low, arguments.high}});
}

} // namespace z3d::render
