// Mode 6, first hit: the voxel nearest the viewer that lies in the window, unshaded.
//
// Departures from the frame:
// - the first accepted voxel ends the ray
// - colour tests the window on the channel sum and writes that voxel's own channels
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

struct HitGrey : RuleDefaults {
    using Format = Grey;
    static constexpr int kFirstLook = 2;
    static constexpr int kLook = 8;
    struct Lanes {
        Bytes hit;
        Bytes isFound;
    };
    GreyWindow window;

    Z3D_INLINE void Sample(const GreySample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes isFirst = window.Accepts(sample) & isValid & ~lanes.isFound;
        lanes.hit |= sample.value & isFirst;
        lanes.isFound |= isFirst;
    }
    Z3D_INLINE Bytes Ended(const Lanes& lanes) const { return lanes.isFound; }
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        return ~AreEqual(bound, Bytes{}) & ~lanes.isFound;
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (lanes.isFound[ray]) pixel[0] = pixel[1] = pixel[2] = lanes.hit[ray];
    }
};

struct HitRgb : RuleDefaults {
    using Format = Rgb;
    static constexpr int kFirstLook = 2;
    static constexpr int kLook = 8;
    struct Lanes {
        Bytes hit[3];
        Bytes isFound;
    };
    RgbWindow window;

    Z3D_INLINE void Sample(const RgbSample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes isFirst = window.Accepts(sample) & isValid & ~lanes.isFound;
        for (int c = 0; c < 3; ++c)
            lanes.hit[c] |= sample.channel[c] & isFirst;
        lanes.isFound |= isFirst;
    }
    Z3D_INLINE Bytes Ended(const Lanes& lanes) const { return lanes.isFound; }
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        return ~AreEqual(bound, Bytes{}) & ~lanes.isFound;
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (!lanes.isFound[ray]) return;
        for (int c = 0; c < 3; ++c)
            pixel[c] = lanes.hit[c][ray];
    }
};

} // namespace

void FirstHitGrey(const ProjectionJob& job) {
    RenderWith(job, HitGrey{{}, GreyWindow(InclusiveRange(kLargestGrey, job.low, job.high))});
}

void FirstHitRgb(const ProjectionJob& job) {
    RenderWith(job, HitRgb{{}, RgbWindow(InclusiveRange(kLargestSum, job.low, job.high))});
}

} // namespace z3d::render::Z3D_ISA
