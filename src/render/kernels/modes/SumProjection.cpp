// Mode 2, sum projection: the sum of each ray's voxels that lie in the window, neither averaged nor scaled.
//
// Departures from the frame:
// - the first voxel that counts turns the initial value into a sum of 0
// - colour tests the window on the channel sum, and sums each channel by itself
// - sums are kept in single precision: beyond 2^24 they lose integer exactness
#include "render/kernels/Kernels.h"
#include "render/kernels/modes/ModeWindow.h"
#include "render/kernels/modes/RaySums.h"
#include "render/kernels/walks/Render.h"

#include <type_traits>

namespace z3d::render::Z3D_ISA {
namespace {

template <class VoxelFormat>
struct Sum {
    using Format = VoxelFormat;
    // Its copy is the compiler's, which names an index.
    // NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming)
    struct State {
        RaySums sum[Format::kChannels];
        Bytes isFound;
    };
    using Fold = std::conditional_t<Format::kChannels == 3, ColourSums, void>;
    static constexpr Counts kCounts = Counts::EverySample;
    static constexpr bool kEndsRays = false;
    static constexpr bool kReducesRows = true;

    RayShape shape;
    Looks looks = {.initial = kLowestFloat, .measure = Measure::Largeness};
    typename Format::Window window;
    bool isExact; // no sum can pass 2^24

    explicit Sum(const Projection& projection)
        : window(WindowOf<Format>(projection, WindowTest::Inclusive)),
          isExact(projection.view.outputDepth <= kExactSamples) {}

    Z3D_INLINE void Sample(const typename Format::Sample& voxels, const SamplePlace&, Bytes accepted,
                           State& state) const {
        for (int c = 0; c < Format::kChannels; ++c)
            state.sum[c].Add(voxels.channel[c] & accepted, isExact);
        state.isFound |= accepted;
    }
    // Inexact sums depend on the order: a stretch must not be summed by itself.
    Z3D_INLINE bool MayFold() const { return isExact; }
    Z3D_INLINE void AddTo(ColourSums& sums, const std::uint32_t* colours, Bytes accepted) const {
        sums.Add(colours, accepted);
    }
    Z3D_INLINE void Merge(const ColourSums& sums, Bytes accepted, State& state) const {
        Sums added[3];
        sums.Get(added);
        for (int c = 0; c < Format::kChannels; ++c)
            state.sum[c].Add(added[c], isExact);
        state.isFound |= accepted;
    }
    Z3D_INLINE void EndStretch(State& state) const {
        for (RaySums& sum : state.sum)
            sum.EndStretch();
    }
    // Black, of bound 1, adds nothing: it can only begin a sum.
    Z3D_INLINE Bytes Settled(const State& state, const Bytes (&)[3]) const {
        return state.isFound & AllBytes(1);
    }
    Z3D_INLINE RayPixels<Format::kChannels> Finish(const State& state) const {
        RayPixels<Format::kChannels> pixels;
        for (int c = 0; c < Format::kChannels; ++c)
            pixels.channel[c] = Where(state.isFound, state.sum[c].Total(), looks.initial);
        return pixels;
    }
};

template <class Format>
void RenderSum(const Projection& projection) {
    const Sum<Format> mode(projection);
    Render(projection, RuleOf(mode, projection.grid));
}

} // namespace

void SumProjectionGrey(const Projection& projection) { RenderSum<Grey>(projection); }
void SumProjectionRgb(const Projection& projection) { RenderSum<Rgb>(projection); }

} // namespace z3d::render::Z3D_ISA
