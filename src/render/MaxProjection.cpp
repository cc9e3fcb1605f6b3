// Mode 0, maximum-intensity projection: the largest voxel of each ray that lies in the window.
//
// Departures from the frame:
// - grey takes one sample past the trimmed range: the border voxel again, or the one just beyond the crop box
// - colour tests the window on the channel sum, but keeps the maximum of each channel by itself
#include "render/Modes.h"
#include "render/RayFrame.h"

namespace z3d::render {
namespace {

struct MaxGrey : FrameDefaults {
    using Voxel = Grey;
    static constexpr std::int32_t kSamplesPastEnd = 1;
    InclusiveWindow window;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        const std::int32_t value = Grey::Value(at.bytes);
        if (window.Contains(value)) pixel[0] = std::max(pixel[0], static_cast<float>(value));
        return true;
    }
    void Finish(float* pixel, const State&) const { pixel[1] = pixel[2] = pixel[0]; }
};

struct MaxRgb : FrameDefaults {
    using Voxel = Rgb;
    InclusiveWindow window;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        if (!window.Contains(Rgb::Value(at.bytes))) return true;
        for (int c = 0; c < 3; ++c)
            pixel[c] = std::max(pixel[c], static_cast<float>(at.bytes[c]));
        return true;
    }
    void Finish(float*, const State&) const {}
};

} // namespace

float* MaxProjectionGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, MaxGrey{{}, {arguments.low, arguments.high}});
}

float* MaxProjectionRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, MaxRgb{{}, {arguments.low, arguments.high}});
}

} // namespace z3d::render
