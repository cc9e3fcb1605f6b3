// Mode 2, sum projection: the sum of each ray's voxels that lie in the window, neither averaged nor scaled.
//
// Departures from the frame:
// - the first voxel that counts turns the initial value into a sum of 0
// - colour tests the window on the channel sum, and sums each channel by itself
// - sums are kept in single precision: beyond 2^24 they lose integer exactness
#include "render/Modes.h"
#include "render/RayFrame.h"

namespace z3d::render {
namespace {

void AddTo(float& sum, std::uint8_t value) {
    if (sum < 0) sum = 0;
    sum += static_cast<float>(value);
}

struct SumGrey : FrameDefaults {
    using Voxel = Grey;
    InclusiveWindow window;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        if (window.Contains(Grey::Value(at.bytes))) AddTo(pixel[0], at.bytes[0]);
        return true;
    }
    void Finish(float* pixel, const State&) const { pixel[1] = pixel[2] = pixel[0]; }
};

struct SumRgb : FrameDefaults {
    using Voxel = Rgb;
    InclusiveWindow window;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        if (!window.Contains(Rgb::Value(at.bytes))) return true;
        for (int c = 0; c < 3; ++c)
            AddTo(pixel[c], at.bytes[c]);
        return true;
    }
    void Finish(float*, const State&) const {}
};

} // namespace

float* SumProjectionGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, SumGrey{{}, {arguments.low, arguments.high}});
}

float* SumProjectionRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, SumRgb{{}, {arguments.low, arguments.high}});
}

} // namespace z3d::render
