// Mode 2, sum projection: the sum of each ray's voxels that lie in the window, neither averaged nor scaled.
//
// Departures from the frame:
// - the first voxel that counts turns the initial value into a sum of 0
// - colour tests the window on the channel sum, and sums each channel by itself
// - sums are kept in single precision: beyond 2^24 they lose integer exactness
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"
#include "render/isa/SumLanes.h"

namespace z3d::render::Z3D_ISA {
namespace {

struct SumRule : RuleDefaults {
    static constexpr Measure kMeasure = Measure::Largeness;
    // Black adds nothing: it can only begin a sum.
    template <class Lanes>
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        return WantsColour(bound, lanes.isFound);
    }
};

struct SumGrey : SumRule {
    using Format = Grey;
    struct Lanes {
        SumLanes sum;
        Bytes isFound;
    };
    GreyWindow window;
    bool isExact; // no sum can pass 2^24

    template <class AnyGrey>
    Z3D_INLINE void Sample(const AnyGrey& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        lanes.sum.Add(sample.value & accepted, isExact);
        lanes.isFound |= accepted;
    }
    Z3D_INLINE void EndStretch(Lanes& lanes) const { lanes.sum.EndStretch(); }
    bool AreSame(const Lanes& before, const Lanes& after) const { return before.sum.IsSame(after.sum); }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (lanes.isFound[ray]) pixel[0] = pixel[1] = pixel[2] = lanes.sum.Of(ray);
    }
};

struct SumRgb : SumRule {
    using Format = Rgb;
    struct Lanes {
        SumLanes sum[3];
        Bytes isFound;
    };
    RgbWindow window;
    bool isExact;

    Z3D_INLINE void Sample(const RgbSample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        for (int c = 0; c < 3; ++c)
            lanes.sum[c].Add(sample.channel[c] & accepted, isExact);
        lanes.isFound |= accepted;
    }
    Z3D_INLINE void EndStretch(Lanes& lanes) const {
        for (SumLanes& sum : lanes.sum)
            sum.EndStretch();
    }
    bool AreSame(const Lanes& before, const Lanes& after) const {
        return before.sum[0].IsSame(after.sum[0]) && before.sum[1].IsSame(after.sum[1])
               && before.sum[2].IsSame(after.sum[2]);
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (!lanes.isFound[ray]) return;
        for (int c = 0; c < 3; ++c)
            pixel[c] = lanes.sum[c].Of(ray);
    }
};

bool HasExactSums(const ProjectionJob& job) { return job.geometry.outputDepth <= kExactSamples; }

} // namespace

void SumProjectionGrey(const ProjectionJob& job) {
    RenderWith(job,
               SumGrey{{{}}, GreyWindow(InclusiveRange(kLargestGrey, job.low, job.high)), HasExactSums(job)});
}

void SumProjectionRgb(const ProjectionJob& job) {
    RenderWith(job,
               SumRgb{{{}}, RgbWindow(InclusiveRange(kLargestSum, job.low, job.high)), HasExactSums(job)});
}

} // namespace z3d::render::Z3D_ISA
