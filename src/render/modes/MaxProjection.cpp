// Mode 0, maximum-intensity projection: the largest voxel of each ray that lies in the window.
//
// Departures from the frame:
// - grey takes one sample past the trimmed range: the border voxel again, or the one just beyond the crop box
// - colour tests the window on the channel sum, but keeps the maximum of each channel by itself
#include "render/isa/Extreme.h"
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

struct MaxGrey : ExtremeRule<MaxGrey> {
    using ExtremeRule::ExtremeRule;
    static constexpr std::int32_t kSamplesPastEnd = 1;
    static constexpr Measure kMeasure = Measure::Largeness;
    Z3D_INLINE static Bytes RankOf(Bytes value) { return value; }
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

void MaxProjectionGrey(const ProjectionJob& job) { RenderBestFirst(job, MaxGrey(job)); }

void MaxProjectionRgb(const ProjectionJob& job) {
    RenderWith(job, MaxRgb{{}, RgbWindow(InclusiveRange(kLargestSum, job.low, job.high))});
}

} // namespace z3d::render::Z3D_ISA
