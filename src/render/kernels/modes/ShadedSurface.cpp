// Mode 3, shaded surfaces. A voxel belongs to the material when its value lies strictly inside the window.
// First surface (extra = 0): the shade where a ray first meets the material. Layered surfaces: the sum of the
// shades of all its entries into the material, the n-th, from 0, weighted by extra to the power n. Colour
// scales the voxel's chromaticity (each channel's share of the sum) by the shade.
//
// Departures from the frame:
// - a pixel without a surface holds 0, and the window is strict
// - volumes of 3 and more slices are sampled one voxel inside their border, so that gradients stay inside
// - volumes of 1 or 2 slices are not shaded; the grey first surface then looks at the first sample alone
#include "render/kernels/Kernels.h"
#include "render/kernels/modes/ModeWindow.h"
#include "render/kernels/modes/SurfaceShade.h"
#include "render/kernels/walks/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

template <class Format>
RayShape ShapeOf(const SurfaceShade<Format>& shade) {
    return {.margin = shade.IsShaded() ? 1 : 0};
}

// States begin with the initial value, 0.
template <int kChannels>
Z3D_INLINE RayPixels<kChannels> PixelsOf(const float (&shown)[kChannels][kRays]) {
    RayPixels<kChannels> pixels;
    for (int c = 0; c < kChannels; ++c)
        pixels.channel[c] = LoadRayFloats(shown[c]);
    return pixels;
}

template <class VoxelFormat>
struct FirstSurface : NothingPending {
    using Format = VoxelFormat;
    struct State {
        float shown[Format::kChannels][kRays];
        Bytes isFound;
    };
    static constexpr Counts kCounts = Counts::EverySample;
    static constexpr bool kEndsRays = true;
    static constexpr bool kReducesRows = false;

    SurfaceShade<Format> shade;
    RayShape shape;
    Looks looks = {.initial = 0, .measure = Measure::Presence, .first = 2, .later = 8};
    typename Format::Window window;

    explicit FirstSurface(const Projection& projection)
        : shade(projection), shape(ShapeOf(shade)), window(WindowOf<Format>(projection, WindowTest::Strict)) {
        if (Format::kChannels == 1 && !shade.IsShaded()) shape.sampleLimit = 1;
    }

    Z3D_INLINE void Sample(const typename Format::Sample&, const SamplePlace& place, Bytes accepted,
                           State& state) const {
        const Bytes isFirst = accepted & ~state.isFound;
        state.isFound |= isFirst;
        for (unsigned rays = BitsOf(isFirst); rays != 0; rays &= rays - 1) {
            const int ray = __builtin_ctz(rays);
            shade.AddTo(state.shown, place, ray, 1.0f);
        }
    }
    Z3D_INLINE Bytes Settled(const State& state, const Bytes (&)[3]) const { return state.isFound; }
    Z3D_INLINE RayPixels<Format::kChannels> Finish(const State& state) const { return PixelsOf(state.shown); }
};

template <class VoxelFormat>
struct LayeredSurface : NothingPending {
    using Format = VoxelFormat;
    struct State {
        float shown[Format::kChannels][kRays];
        float weight[kRays]; // of the next entry, once there was one
        Bytes hasEntered;
    };
    static constexpr Counts kCounts = Counts::Entries;
    static constexpr bool kEndsRays = false;
    static constexpr bool kReducesRows = false;

    SurfaceShade<Format> shade;
    RayShape shape;
    Looks looks = {.initial = 0, .measure = Measure::Presence};
    typename Format::Window window;
    float attenuation;

    explicit LayeredSurface(const Projection& projection)
        : shade(projection),
          shape(ShapeOf(shade)),
          window(WindowOf<Format>(projection, WindowTest::Strict)),
          attenuation(projection.arguments.extra) {}

    Z3D_INLINE void Sample(const typename Format::Sample&, const SamplePlace& place, Bytes enters,
                           State& state) const {
        for (unsigned rays = BitsOf(enters); rays != 0; rays &= rays - 1) {
            const int ray = __builtin_ctz(rays);
            if (!state.hasEntered[ray]) state.weight[ray] = 1;
            shade.AddTo(state.shown, place, ray, state.weight[ray]);
            state.weight[ray] *= attenuation;
        }
        state.hasEntered |= enters;
    }
    Z3D_INLINE Bytes Settled(const State&, const Bytes (&)[3]) const { return Bytes{}; }
    Z3D_INLINE RayPixels<Format::kChannels> Finish(const State& state) const { return PixelsOf(state.shown); }
};

template <class Surface>
void RenderSurface(const Projection& projection) {
    const Surface mode(projection);
    Render(projection, RuleOf(mode, projection.grid));
}

} // namespace

void FirstSurfaceGrey(const Projection& projection) { RenderSurface<FirstSurface<Grey>>(projection); }
void FirstSurfaceRgb(const Projection& projection) { RenderSurface<FirstSurface<Rgb>>(projection); }
void LayeredSurfaceGrey(const Projection& projection) { RenderSurface<LayeredSurface<Grey>>(projection); }
void LayeredSurfaceRgb(const Projection& projection) { RenderSurface<LayeredSurface<Rgb>>(projection); }

} // namespace z3d::render::Z3D_ISA
