// Mode 0, maximum-intensity projection: the brightest voxel of each ray that lies in the window.
//
// Departures from the frame:
// - grey takes one sample past the trimmed range; colour does not
// - colour tests the window on the channel sum but keeps the maximum of each channel by itself
#include "render/Modes.h"
#include "render/RayFrame.h"

namespace z3d::render {
namespace {

struct MaxGrey {
    using Voxel = GreyVoxel;
    static constexpr float kInitial = kLowestFloat;
    static constexpr std::int32_t kSamplesPastEnd = 1;
    InclusiveWindow window;

    bool Sample(const GreyVoxel& voxel, float* pixel) const {
        if (window.Contains(voxel.value) && voxel.value > pixel[0]) pixel[0] = voxel.value;
        return true;
    }
    void Finish(float* pixel) const { pixel[1] = pixel[2] = pixel[0]; }
};

struct MaxRgb {
    using Voxel = RgbVoxel;
    static constexpr float kInitial = kLowestFloat;
    static constexpr std::int32_t kSamplesPastEnd = 0;
    InclusiveWindow window;

    bool Sample(const RgbVoxel& voxel, float* pixel) const {
        if (!window.Contains(voxel.WindowValue())) return true;
        for (int c = 0; c < 3; ++c)
            pixel[c] = std::max(pixel[c], static_cast<float>(voxel.channel[c]));
        return true;
    }
    void Finish(float*) const {}
};

} // namespace

float* MaxProjectionGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, MaxGrey{{arguments.low, arguments.high}});
}

float* MaxProjectionRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, MaxRgb{{arguments.low, arguments.high}});
}

} // namespace z3d::render
