// Mode 0, maximum-intensity projection: the largest voxel of each ray that lies in the window.
//
// Departures from the frame:
// - grey takes one sample past the trimmed range: the border voxel again, or the one just beyond the crop box
// - colour tests the window on the channel sum, but keeps the maximum of each channel by itself
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

struct MaxGrey : RuleDefaults {
    using Format = Grey;
    static constexpr std::int32_t kSamplesPastEnd = 1;
    static constexpr Measure kMeasure = Measure::Largeness;
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
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        return IsAbove(bound, lanes.largest, lanes.isFound);
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (lanes.isFound[ray]) pixel[0] = pixel[1] = pixel[2] = lanes.largest[ray];
    }
};

struct MaxRgb : RuleDefaults {
    using Format = Rgb;
    static constexpr Measure kMeasure = Measure::Largeness; // of any channel
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
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        const Bytes least = Smaller(Smaller(lanes.largest[0], lanes.largest[1]), lanes.largest[2]);
        return IsAbove(bound, least, lanes.isFound);
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (!lanes.isFound[ray]) return;
        for (int c = 0; c < 3; ++c)
            pixel[c] = lanes.largest[c][ray];
    }
};

} // namespace

void MaxProjectionGrey(const ProjectionJob& job) {
    RenderWith(job, MaxGrey{{}, GreyWindow(InclusiveRange(kLargestGrey, job.low, job.high))});
}

void MaxProjectionRgb(const ProjectionJob& job) {
    RenderWith(job, MaxRgb{{}, RgbWindow(InclusiveRange(kLargestSum, job.low, job.high))});
}

} // namespace z3d::render::Z3D_ISA
