// Mode 4, translucent blend: every voxel in the window covers what lies behind it, the more the brighter it is
// and the less the larger the transparency t.
//
// Departures from the frame:
// - rays run back to front, so the sample nearest the viewer is blended last
// - t = 1 is taken as 0.95: samples never lose all their weight
// - the window skips what lies outside it, so a bound that is not a number skips nothing
// - the first voxel that counts turns the initial value into 0
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"
#include "render/isa/SingleLanes.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr double kOverLargestByte = 0.003921569f; // 1 / 255, as the nearest float
constexpr double kOverLargestSum = 0.0013071896f; // 1 / 765, likewise

double OpacityOf(float transparency) {
    return 1 - static_cast<double>(transparency == 1 ? 0.95f : transparency);
}

// A pixel that holds the initial value begins at 0, also where blending led to that value.
template <int kBlends>
[[gnu::noinline]] void BeginAgain(SingleLanes (&blends)[kBlends]) {
    for (int ray = 0; ray < kRays; ++ray) {
        if (blends[0].Of(ray) != kLowestFloat) continue;
        for (SingleLanes& blend : blends)
            blend.part[ray / kDoubleLanes][ray % kDoubleLanes] = 0;
    }
}

// (1 - w) * behind + w * value, in doubles, rounded once.
Z3D_INLINE void Cover(SingleLanes& behind, int part, Doubles weight, Doubles value) {
    behind.part[part] = RoundToSingle((1.0 - weight) * behind.part[part] + weight * value);
}

struct BlendRule : RuleDefaults {
    static constexpr bool kBackToFront = true;
    static constexpr Measure kMeasure = Measure::Largeness;
    double opacity;
    explicit BlendRule(const ProjectionJob& job) : opacity(OpacityOf(job.extra)) {}

    // Black weighs 0 and leaves what is behind it as it is: rays whose voxel is not accepted are given black. For an
    // opacity from 0 to 1 weights are from 0 to 1 (that of white may be 3e-8 more, and white then adds 255), so blends
    // are sums from +0 on, and adding 0 changes no bit. Others may lead anywhere, even to the initial value, which
    // ends with the next accepted voxel, black too: there rays are put back, and black counts.
    bool HasNeutralBlack() const { return opacity >= 0 && opacity <= 1; }

    template <class Lanes>
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        return HasNeutralBlack() ? WantsColour(bound, lanes.isFound) : WantsAny(bound);
    }
};

struct BlendGrey : BlendRule {
    using Format = Grey;
    struct Lanes {
        SingleLanes blend[1];
        Bytes isFound;
    };
    GreyWindow window;

    explicit BlendGrey(const ProjectionJob& job)
        : BlendRule(job), window(UnskippedRange(kLargestGrey, job.low, job.high)) {}

    Z3D_INLINE void Sample(const GreySample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        if (!AnySet(accepted)) return;
        lanes.isFound |= accepted;
        if (!HasNeutralBlack()) [[unlikely]] {
            const Lanes before = lanes;
            BeginAgain(lanes.blend);
            CoverAll(sample.value, lanes);
            PutBack(lanes.blend, before.blend, accepted);
            return;
        }
        CoverAll(sample.value & accepted, lanes);
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (lanes.isFound[ray]) pixel[0] = pixel[1] = pixel[2] = lanes.blend[0].Of(ray);
    }

private:
    Z3D_INLINE void CoverAll(Bytes bytes, Lanes& lanes) const {
        const DoubleLanes values = Widen(bytes);
#pragma GCC unroll 8
        for (int part = 0; part < kRays / kDoubleLanes; ++part) {
            const Doubles value = values.part[part];
            // The weight is kept in single precision; colour does not round it.
            Cover(lanes.blend[0], part, RoundToSingle(value * kOverLargestByte * opacity), value);
        }
    }
};

struct BlendRgb : BlendRule {
    using Format = Rgb;
    struct Lanes {
        SingleLanes blend[3];
        Bytes isFound;
    };
    RgbWindow window;

    explicit BlendRgb(const ProjectionJob& job)
        : BlendRule(job), window(UnskippedRange(kLargestSum, job.low, job.high)) {}

    Z3D_INLINE void Sample(const RgbSample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        if (!AnySet(accepted)) return;
        lanes.isFound |= accepted;
        if (!HasNeutralBlack()) [[unlikely]] {
            const Lanes before = lanes;
            BeginAgain(lanes.blend);
            CoverAll(sample, AllBytes(0xFF), lanes);
            PutBack(lanes.blend, before.blend, accepted);
            return;
        }
        CoverAll(sample, accepted, lanes);
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (!lanes.isFound[ray]) return;
        for (int c = 0; c < 3; ++c)
            pixel[c] = lanes.blend[c].Of(ray);
    }

private:
    Z3D_INLINE void CoverAll(const RgbSample& sample, Bytes mask, Lanes& lanes) const {
        const RgbSample shown = {
            {sample.channel[0] & mask, sample.channel[1] & mask, sample.channel[2] & mask}, {}};
        DoubleLanes weights = Widen(shown.Sum());
        for (Doubles& weight : weights.part)
            weight = weight * kOverLargestSum * opacity;
        for (int c = 0; c < 3; ++c) {
            const DoubleLanes values = Widen(shown.channel[c]);
#pragma GCC unroll 8
            for (int part = 0; part < kRays / kDoubleLanes; ++part)
                Cover(lanes.blend[c], part, weights.part[part], values.part[part]);
        }
    }
};

} // namespace

void TranslucentBlendGrey(const ProjectionJob& job) { RenderWith(job, BlendGrey(job)); }

void TranslucentBlendRgb(const ProjectionJob& job) { RenderWith(job, BlendRgb(job)); }

} // namespace z3d::render::Z3D_ISA
