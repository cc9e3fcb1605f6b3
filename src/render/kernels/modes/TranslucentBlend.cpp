// Mode 4, translucent blend: every voxel in the window covers what lies behind it, the more the brighter it is
// and the less the larger the transparency t.
//
// Departures from the frame:
// - rays run back to front, so the sample nearest the viewer is blended last
// - t = 1 is taken as 0.95: samples never lose all their weight
// - the window skips what lies outside it, so a NaN bound skips nothing
// - the first voxel that counts turns the initial value into 0
#include "render/kernels/Kernels.h"
#include "render/kernels/modes/ModeWindow.h"
#include "render/kernels/modes/RayBlends.h"
#include "render/kernels/walks/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr double kOverLargestByte = 0.003921569f; // 1 / 255, as the nearest float
constexpr double kOverLargestSum = 0.0013071896f; // 1 / 765, likewise

double OpacityOf(float transparency) {
    return 1 - static_cast<double>(transparency == 1 ? 0.95f : transparency);
}

// The weight of a grey voxel is kept in single precision; that of a colour is not rounded.
Z3D_INLINE RayDoubles WeightsOf(const GreyVoxels& voxels, double opacity) {
    RayDoubles weights = ToDoubles(voxels.channel[0]);
#pragma GCC unroll 8
    for (Doubles& weight : weights.part)
        weight = RoundToSingle(weight * kOverLargestByte * opacity);
    return weights;
}
Z3D_INLINE RayDoubles WeightsOf(const RgbVoxels& voxels, double opacity) {
    RayDoubles weights = ToDoubles(SumOf(voxels));
#pragma GCC unroll 8
    for (Doubles& weight : weights.part)
        weight = weight * kOverLargestSum * opacity;
    return weights;
}

template <class VoxelFormat>
struct Blend : NothingPending {
    using Format = VoxelFormat;
    static constexpr int kChannels = Format::kChannels;
    struct State {
        RayBlends blend[kChannels];
        Bytes isFound;
    };
    static constexpr Counts kCounts = Counts::EverySample;
    static constexpr bool kEndsRays = false;
    static constexpr bool kReducesRows = true;

    RayShape shape = {.backToFront = true};
    Looks looks = {.initial = kLowestFloat, .measure = Measure::Largeness};
    typename Format::Window window;
    double opacity;
    // Black weighs 0 and leaves what is behind it as it is: rays whose voxel is not accepted are given black. For an
    // opacity from 0 to 1 weights are from 0 to 1 (that of white may be 3e-8 more, and white then adds 255), so blends
    // are sums from +0 on, and adding 0 changes no bit. Others may lead anywhere, even to the initial value, which
    // ends with the next accepted voxel, black too: there rays are put back, and black counts.
    bool hasNeutralBlack;

    explicit Blend(const Projection& projection)
        : window(WindowOf<Format>(projection, WindowTest::Skipping)),
          opacity(OpacityOf(projection.arguments.extra)),
          hasNeutralBlack(opacity >= 0 && opacity <= 1) {}

    Z3D_INLINE void Sample(const typename Format::Sample& voxels, const SamplePlace&, Bytes accepted,
                           State& state) const {
        if (!AnySet(accepted)) return;
        state.isFound |= accepted;
        if (!hasNeutralBlack) [[unlikely]] {
            CoverAccepted(voxels, accepted, state);
            return;
        }
        typename Format::Sample shown;
        Bytes largest = {};
        for (int c = 0; c < kChannels; ++c) {
            shown.channel[c] = voxels.channel[c] & accepted;
            largest |= shown.channel[c];
        }
        if (AnySet(~AreEqual(largest, Bytes{}))) Cover(shown, state);
    }
    Z3D_INLINE Bytes Settled(const State& state, const Bytes (&)[3]) const {
        return hasNeutralBlack ? state.isFound & AllBytes(1) : Bytes{};
    }
    Z3D_INLINE RayPixels<kChannels> Finish(const State& state) const {
        RayPixels<kChannels> pixels;
        for (int c = 0; c < kChannels; ++c)
            pixels.channel[c] = Where(state.isFound, state.blend[c].Values(), looks.initial);
        return pixels;
    }

private:
    // (1 - w) * behind + w * value, in doubles, rounded once.
    Z3D_INLINE void Cover(const typename Format::Sample& voxels, State& state) const {
        const RayDoubles weights = WeightsOf(voxels, opacity);
#pragma GCC unroll 3
        for (int c = 0; c < kChannels; ++c) {
            const RayDoubles values = ToDoubles(voxels.channel[c]);
            RayBlends& behind = state.blend[c];
#pragma GCC unroll 8
            for (int part = 0; part < RayDoubles::kParts; ++part) {
                behind.part[part] = RoundToSingle((1.0 - weights.part[part]) * behind.part[part]
                                                  + weights.part[part] * values.part[part]);
            }
        }
    }

    [[gnu::noinline]] void CoverAccepted(const typename Format::Sample& voxels, Bytes accepted,
                                         State& state) const {
        const State before = state;
        // A pixel that holds the initial value begins at 0, also where blending led to that value.
        for (int ray = 0; ray < kRays; ++ray) {
            if (state.blend[0].Of(ray) != kLowestFloat) continue;
            for (RayBlends& blend : state.blend)
                blend.Set(ray, 0);
        }
        Cover(voxels, state);
        for (int c = 0; c < kChannels; ++c) {
            for (int ray = 0; ray < kRays; ++ray) {
                if (!accepted[ray]) state.blend[c].Set(ray, before.blend[c].Of(ray));
            }
        }
    }
};

template <class Format>
void RenderBlend(const Projection& projection) {
    const Blend<Format> mode(projection);
    Render(projection, RuleOf(mode, projection.grid));
}

} // namespace

void TranslucentBlendGrey(const Projection& projection) { RenderBlend<Grey>(projection); }
void TranslucentBlendRgb(const Projection& projection) { RenderBlend<Rgb>(projection); }

} // namespace z3d::render::Z3D_ISA
