// Mode 6, first hit: the voxel nearest the viewer that lies in the window, unshaded.
//
// Departures from the frame:
// - the first accepted voxel ends the ray
// - colour tests the window on the channel sum and writes that voxel's own channels
#include "render/kernels/Kernels.h"
#include "render/kernels/modes/ModeWindow.h"
#include "render/kernels/walks/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

template <class VoxelFormat>
struct Hit : NothingPending {
    using Format = VoxelFormat;
    struct State {
        Bytes hit[Format::kChannels];
        Bytes isFound;
    };
    static constexpr Counts kCounts = Counts::EverySample;
    static constexpr bool kEndsRays = true;
    static constexpr bool kReducesRows = true;

    RayShape shape;
    Looks looks = {.initial = kLowestFloat, .measure = Measure::Presence, .first = 2, .later = 8};
    typename Format::Window window;

    explicit Hit(const Projection& projection) : window(WindowOf<Format>(projection, WindowTest::Inclusive)) {
        // Every ray ends with its first sample.
        if (window.IsFull()) shape.sampleLimit = 1;
    }

    Z3D_INLINE void Sample(const typename Format::Sample& voxels, const SamplePlace&, Bytes accepted,
                           State& state) const {
        const Bytes isFirst = accepted & ~state.isFound;
        // Then colours need not be sorted into channels.
        if (Format::kChannels == 3 && !AnySet(isFirst)) return;
        for (int c = 0; c < Format::kChannels; ++c)
            state.hit[c] |= voxels.channel[c] & isFirst;
        state.isFound |= isFirst;
    }
    Z3D_INLINE Bytes Settled(const State& state, const Bytes (&)[3]) const { return state.isFound; }
    Z3D_INLINE RayPixels<Format::kChannels> Finish(const State& state) const {
        RayPixels<Format::kChannels> pixels;
        for (int c = 0; c < Format::kChannels; ++c)
            pixels.channel[c] = Where(state.isFound, ToRayFloats(state.hit[c]), looks.initial);
        return pixels;
    }
};

template <class Format>
void RenderHit(const Projection& projection) {
    const Hit<Format> mode(projection);
    Render(projection, RuleOf(mode, projection.grid));
}

} // namespace

void FirstHitGrey(const Projection& projection) { RenderHit<Grey>(projection); }
void FirstHitRgb(const Projection& projection) { RenderHit<Rgb>(projection); }

} // namespace z3d::render::Z3D_ISA
