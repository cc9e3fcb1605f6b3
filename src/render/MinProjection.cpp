// Mode 1, minimum-intensity projection: the smallest voxel of each ray that lies in the window.
//
// Departures from the frame:
// - a pixel without a contribution holds the largest float
// - colour tests the window on the channel sum, but keeps the minimum of each channel by itself
#include "render/Modes.h"
#include "render/RayFrame.h"

namespace z3d::render {
namespace {

struct MinGrey : FrameDefaults {
    using Voxel = Grey;
    static constexpr float kInitial = kHighestFloat;
    InclusiveWindow window;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        const std::int32_t value = Grey::Value(at.bytes);
        if (window.Contains(value)) pixel[0] = std::min(pixel[0], static_cast<float>(value));
        return true;
    }
    void Finish(float* pixel, const State&) const { pixel[1] = pixel[2] = pixel[0]; }
};

struct MinRgb : FrameDefaults {
    using Voxel = Rgb;
    static constexpr float kInitial = kHighestFloat;
    InclusiveWindow window;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        if (!window.Contains(Rgb::Value(at.bytes))) return true;
        for (int c = 0; c < 3; ++c)
            pixel[c] = std::min(pixel[c], static_cast<float>(at.bytes[c]));
        return true;
    }
    void Finish(float*, const State&) const {}
};

} // namespace

float* MinProjectionGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, MinGrey{{}, {arguments.low, arguments.high}});
}

float* MinProjectionRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, MinRgb{{}, {arguments.low, arguments.high}});
}

} // namespace z3d::render
