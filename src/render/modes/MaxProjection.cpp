// Mode 0, maximum-intensity projection: the largest voxel of each ray that lies in the window.
//
// Departures from the frame:
// - grey takes one sample past the trimmed range: the border voxel again, or the one just beyond the crop box
// - colour tests the window on the channel sum, but keeps the maximum of each channel by itself
#include "render/isa/Kernels.h"
#include "render/isa/PacketWalk.h"

namespace z3d::render::Z3D_ISA {
namespace {

struct MaxGrey : RuleDefaults {
    using Format = Grey;
    static constexpr std::int32_t kSamplesPastEnd = 1;
    struct Lanes {
        Bytes largest;
        Bytes isFound;
    };
    GreyWindow window;

    Z3D_INLINE void Sample(const GreySample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        lanes.largest = Larger(lanes.largest, sample.value & accepted);
        lanes.isFound |= accepted;
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (lanes.isFound[ray]) pixel[0] = pixel[1] = pixel[2] = lanes.largest[ray];
    }
};

struct MaxRgb : RuleDefaults {
    using Format = Rgb;
    struct Lanes {
        Bytes largest[3];
        Bytes isFound;
    };
    RgbWindow window;

    Z3D_INLINE void Sample(const RgbSample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        for (int c = 0; c < 3; ++c)
            lanes.largest[c] = Larger(lanes.largest[c], sample.channel[c] & accepted);
        lanes.isFound |= accepted;
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (!lanes.isFound[ray]) return;
        for (int c = 0; c < 3; ++c)
            pixel[c] = lanes.largest[c][ray];
    }
};

} // namespace

void MaxProjectionGrey(const ProjectionJob& job) {
    RenderPackets(job, MaxGrey{{}, GreyWindow(InclusiveRange(kLargestGrey, job.low, job.high))});
}

void MaxProjectionRgb(const ProjectionJob& job) {
    RenderPackets(job, MaxRgb{{}, RgbWindow(InclusiveRange(kLargestSum, job.low, job.high))});
}

} // namespace z3d::render::Z3D_ISA
