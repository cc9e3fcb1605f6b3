// Mode 1, minimum-intensity projection: the smallest voxel of each ray that lies in the window.
//
// Departures from the frame:
// - a pixel without a contribution holds the largest float
// - colour tests the window on the channel sum, but keeps the minimum of each channel by itself
#include "render/isa/Extreme.h"
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

struct MinGrey : ExtremeRule<MinGrey> {
    using ExtremeRule::ExtremeRule;
    static constexpr float kInitial = kHighestFloat;
    static constexpr Measure kMeasure = Measure::Smallness;
    Z3D_INLINE static Bytes RankOf(Bytes value) { return ~value; }
};

struct MinRgb : RuleDefaults {
    using Format = Rgb;
    static constexpr float kInitial = kHighestFloat;
    static constexpr Measure kMeasure = Measure::Smallness; // of any channel
    struct Lanes {
        Bytes largestComplement[3];
        Bytes isFound;
    };
    RgbWindow window;

    Z3D_INLINE void Sample(const RgbSample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        for (int c = 0; c < 3; ++c) {
            lanes.largestComplement[c] = Larger(lanes.largestComplement[c], ~sample.channel[c] & accepted);
        }
        lanes.isFound |= accepted;
    }
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        const Bytes least = Smaller(Smaller(lanes.largestComplement[0], lanes.largestComplement[1]),
                                    lanes.largestComplement[2]);
        return IsAbove(bound, least, lanes.isFound);
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (!lanes.isFound[ray]) return;
        for (int c = 0; c < 3; ++c)
            pixel[c] = static_cast<float>(255 - lanes.largestComplement[c][ray]);
    }
};

} // namespace

void MinProjectionGrey(const ProjectionJob& job) { RenderBestFirst(job, MinGrey(job)); }

void MinProjectionRgb(const ProjectionJob& job) {
    RenderWith(job, MinRgb{{}, RgbWindow(InclusiveRange(kLargestSum, job.low, job.high))});
}

} // namespace z3d::render::Z3D_ISA
