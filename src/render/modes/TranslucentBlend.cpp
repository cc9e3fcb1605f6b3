// Mode 4, translucent blend: every voxel in the window covers what lies behind it, the more the brighter it is
// and the less the larger the transparency t.
//
// Departures from the frame:
// - rays run back to front, so the sample nearest the viewer is blended last
// - t = 1 is taken as 0.95: samples never lose all their weight
// - the window skips what lies outside it, so a bound that is not a number skips nothing
// - the first voxel that counts turns the initial value into 0
#include "render/isa/FloatLanes.h"
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr double kOverLargestByte = 0.003921569f; // 1 / 255, as the nearest float
constexpr double kOverLargestSum = 0.0013071896f; // 1 / 765, likewise

double OpacityOf(float transparency) {
    return 1 - static_cast<double>(transparency == 1 ? 0.95f : transparency);
}

// (1 - w) * behind + w * value for the accepted rays, in doubles, rounded once.
Z3D_INLINE void Cover(FloatLanes& behind, int ray, LongMask isAccepted, Doubles weight, Doubles value) {
    const Doubles old = LoadAsDoubles(behind.value + ray);
    StoreSingle(behind.value + ray, Select(isAccepted, (1.0 - weight) * old + weight * value, old));
}

struct BlendRule : RuleDefaults {
    static constexpr bool kBackToFront = true;
    static constexpr Measure kMeasure = Measure::Largeness;
    double opacity;
    explicit BlendRule(const ProjectionJob& job) : opacity(OpacityOf(job.extra)) {}

    // Black weighs nothing, unless the opacity is infinite or not a number: it can only begin a blend.
    template <class Lanes>
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        const bool isFinite = __builtin_fabs(opacity) <= kHighestSingle;
        const Bytes isBlack = AreEqual(Smaller(bound, AllBytes(1)), bound);
        return ~(AreEqual(bound, Bytes{}) | (isFinite ? isBlack & lanes.isFound : Bytes{}));
    }
};

struct BlendGrey : BlendRule {
    using Format = Grey;
    struct Lanes {
        FloatLanes blend;
        Bytes isFound;
    };
    GreyWindow window;

    explicit BlendGrey(const ProjectionJob& job)
        : BlendRule(job), window(UnskippedRange(kLargestGrey, job.low, job.high)) {}

    Z3D_INLINE void Sample(const GreySample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        if (!AnySet(accepted)) return;
        lanes.isFound |= accepted;
        const IntegerLanes values(sample.value);
        const IntegerLanes masks(accepted);
        for (int ray = 0; ray < kRays; ray += kDoubleLanes) {
            const Doubles value = LoadAsDoubles(values.value + ray);
            // The weight is kept in single precision; colour does not round it.
            const Doubles weight = RoundToSingle(value * kOverLargestByte * opacity);
            Cover(lanes.blend, ray, LoadAsDoubles(masks.value + ray) > 0.0, weight, value);
        }
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (lanes.isFound[ray]) pixel[0] = pixel[1] = pixel[2] = lanes.blend.value[ray];
    }
};

struct BlendRgb : BlendRule {
    using Format = Rgb;
    struct Lanes {
        FloatLanes blend[3];
        Bytes isFound;
    };
    RgbWindow window;

    explicit BlendRgb(const ProjectionJob& job)
        : BlendRule(job), window(UnskippedRange(kLargestSum, job.low, job.high)) {}

    Z3D_INLINE void Sample(const RgbSample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        if (!AnySet(accepted)) return;
        lanes.isFound |= accepted;
        const IntegerLanes sums(sample.Sum());
        const IntegerLanes masks(accepted);
        const IntegerLanes values[3] = {IntegerLanes(sample.channel[0]), IntegerLanes(sample.channel[1]),
                                        IntegerLanes(sample.channel[2])};
        for (int ray = 0; ray < kRays; ray += kDoubleLanes) {
            const Doubles weight = LoadAsDoubles(sums.value + ray) * kOverLargestSum * opacity;
            const LongMask isAccepted = LoadAsDoubles(masks.value + ray) > 0.0;
            for (int c = 0; c < 3; ++c) {
                Cover(lanes.blend[c], ray, isAccepted, weight, LoadAsDoubles(values[c].value + ray));
            }
        }
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (!lanes.isFound[ray]) return;
        for (int c = 0; c < 3; ++c)
            pixel[c] = lanes.blend[c].value[ray];
    }
};

} // namespace

void TranslucentBlendGrey(const ProjectionJob& job) { RenderWith(job, BlendGrey(job)); }

void TranslucentBlendRgb(const ProjectionJob& job) { RenderWith(job, BlendRgb(job)); }

} // namespace z3d::render::Z3D_ISA
