// Mode 5, local contrast: the largest difference, along each ray, between a voxel and its neighbours one
// output column to the side and (grey) one output row up or down. Edges come out bright, flat regions dark.
//
// Departures from the frame:
// - the outermost rows and columns of the output are not rendered and hold 0
// - the window is strict, for the voxel and for its neighbours: one outside adds nothing
// - grey measures four neighbours, from the voxel's indexes; colour one, from the unrounded position
// - volumes of 1 or 2 slices score 1 for every voxel in the window: a mask of the window
// - a best score of 0 leaves the initial value
#include "render/kernels/Kernels.h"
#include "render/kernels/modes/ModeWindow.h"
#include "render/kernels/modes/Scores.h"
#include "render/kernels/modes/SideStep.h"
#include "render/kernels/walks/Render.h"
#include "render/tables/ContrastScores.h"
#include "render/tables/NeighbourContrast.h"

namespace z3d::render::Z3D_ISA {
namespace {

constexpr RayShape kContrastShape = {.border = 1};

// Grey where there is no memory for scores, or no scores.
struct GreyContrast : NothingPending {
    using Format = Grey;
    struct State {
        std::int32_t best[kRays];
    };
    static constexpr Counts kCounts = Counts::EverySample;
    static constexpr bool kEndsRays = false;
    static constexpr bool kReducesRows = false;

    RayShape shape = kContrastShape;
    Looks looks = {.initial = kLowestFloat, .measure = Measure::Presence};
    GreyWindow window;
    NeighbourContrast contrast;

    GreyContrast(const Projection& projection, const GreyWindow& strictWindow)
        : window(strictWindow), contrast(projection, strictWindow.Accepted()) {}

    Z3D_INLINE void Sample(const GreyVoxels&, const SamplePlace& place, Bytes accepted, State& state) const {
        for (unsigned rays = BitsOf(accepted); rays != 0; rays &= rays - 1) {
            const int ray = __builtin_ctz(rays);
            const std::int32_t score = contrast.ScoreAt(place.Z(ray), place.Plane(ray));
            if (score > state.best[ray]) state.best[ray] = score;
        }
    }
    Z3D_INLINE Bytes Settled(const State&, const Bytes (&)[3]) const { return Bytes{}; }
    RayPixels<1> Finish(const State& state) const {
        float shown[kRays];
        for (int ray = 0; ray < kRays; ++ray)
            shown[ray] = state.best[ray] > 0 ? static_cast<float>(state.best[ray]) : looks.initial;
        return {{LoadRayFloats(shown)}};
    }
};

// The best score of each ray: grey again, where there is memory for scores.
struct BestScore : NothingPending {
    using State = Sums;
    static constexpr Counts kCounts = Counts::EverySample;
    static constexpr bool kEndsRays = false;
    static constexpr bool kReducesRows = false;

    RayShape shape = kContrastShape;
    Looks looks = {.initial = kLowestFloat, .measure = Measure::Presence};

    Z3D_INLINE static void Take(const Sums& scores, Bytes accepted, Sums& best) {
        const Sums counted = WidenMask(accepted);
        best.low = _mm_max_epi16(best.low, _mm_and_si128(scores.low, counted.low));
        best.high = _mm_max_epi16(best.high, _mm_and_si128(scores.high, counted.high));
    }
    Z3D_INLINE Bytes Settled(const State&, const Bytes (&)[3]) const { return Bytes{}; }
    Z3D_INLINE RayPixels<1> Finish(const State& best) const {
        const __m128i zero = _mm_setzero_si128();
        const Sums isFound = {_mm_cmpgt_epi16(best.low, zero), _mm_cmpgt_epi16(best.high, zero)};
        return {{Where(isFound, ToRayFloats(best), looks.initial)}};
    }
};

// Over scores of 16 bits.
struct BestOfWords : BestScore {
    using Format = Scores;
    NoWindow window;
    Z3D_INLINE void Sample(const Sums& scores, const SamplePlace&, Bytes accepted, Sums& best) const {
        Take(scores, accepted, best);
    }
};

// Over bytes, of which 255 stands for larger ones as well.
struct BestOfBytes : BestScore {
    struct Format : Grey {
        using Window = NoWindow;
    };
    NoWindow window;
    NeighbourContrast contrast;

    BestOfBytes(const Projection& projection, ValueInterval accepted) : contrast(projection, accepted) {}

    Z3D_INLINE void Sample(const GreyVoxels& voxels, const SamplePlace& place, Bytes accepted,
                           Sums& best) const {
        const Bytes bytes = voxels.channel[0];
        Take(Widen(bytes), accepted, best);
        const unsigned large = BitsOf(AreEqual(bytes, AllBytes(255)) & accepted);
        if (large != 0) [[unlikely]]
            TakeLarge(large, place, best);
    }

private:
    [[gnu::noinline]] void TakeLarge(unsigned large, const SamplePlace& place, Sums& best) const {
        std::int16_t scores[kRays] = {};
        for (; large != 0; large &= large - 1) {
            const int ray = __builtin_ctz(large);
            scores[ray] = static_cast<std::int16_t>(contrast.ScoreAt(place.Z(ray), place.Plane(ray)));
        }
        Sums larger;
        __builtin_memcpy(&larger, scores, sizeof larger);
        Take(larger, AllBytes(255), best);
    }
};

// Colour keeps the proportions of the voxel with the best score, scaled to sum to it; a black voxel has none.
struct ColourContrast : NothingPending {
    using Format = RgbWithNeighbour;
    struct State {
        Sums best;
        Bytes colour[3]; // of the voxel with the best score
    };
    static constexpr Counts kCounts = Counts::EverySample;
    static constexpr bool kEndsRays = false;
    static constexpr bool kReducesRows = false;

    RayShape shape = kContrastShape;
    Looks looks = {.initial = kLowestFloat, .measure = Measure::Presence};
    Format::Window window;
    bool isScored;

    explicit ColourContrast(const Projection& projection)
        : window(WindowOf<Format>(projection, WindowTest::Strict)),
          isScored(projection.grid.depth >= kSmallestScoredDepth) {}

    Z3D_INLINE void Sample(const VoxelsAndNeighbours& voxels, const SamplePlace&, Bytes accepted,
                           State& state) const {
        const Bytes counted = isScored ? accepted & window.Accepts(voxels.beside) : accepted;
        const Sums sums = SumOf(voxels.voxel);
        const Sums others = SumOf(voxels.beside);
        const Sums mask = WidenMask(counted);
        const Bytes isBetter = NarrowMask({Better(sums.low, others.low, mask.low, state.best.low),
                                           Better(sums.high, others.high, mask.high, state.best.high)});
        for (int c = 0; c < 3; ++c)
            state.colour[c] = (voxels.voxel.channel[c] & isBetter) | (state.colour[c] & ~isBetter);
    }
    Z3D_INLINE Bytes Settled(const State&, const Bytes (&)[3]) const { return Bytes{}; }
    RayPixels<3> Finish(const State& state) const {
        std::uint16_t scores[kRays];
        __builtin_memcpy(scores, &state.best, sizeof scores);
        float shown[3][kRays];
        for (int ray = 0; ray < kRays; ++ray) {
            const int sum = state.colour[0][ray] + state.colour[1][ray] + state.colour[2][ray];
            const bool isFound = scores[ray] != 0 && sum != 0;
            for (int c = 0; c < 3; ++c) {
                const double part = static_cast<double>(state.colour[c][ray]) * scores[ray];
                shown[c][ray] = isFound ? static_cast<float>(part / sum) : looks.initial;
            }
        }
        return {{LoadRayFloats(shown[0]), LoadRayFloats(shown[1]), LoadRayFloats(shown[2])}};
    }

private:
    // Where a score is above the best one, which it then replaces.
    Z3D_INLINE __m128i Better(__m128i sums, __m128i others, __m128i counted, __m128i& best) const {
        const __m128i apart = isScored
                                  ? _mm_sub_epi16(_mm_max_epi16(sums, others), _mm_min_epi16(sums, others))
                                  : _mm_set1_epi16(1);
        const __m128i score = _mm_and_si128(apart, counted);
        const __m128i isBetter = _mm_cmpgt_epi16(score, best);
        best = _mm_max_epi16(score, best);
        return isBetter;
    }
};

// As a maximum, after which rays that found a score too large for a byte run again.
bool RenderByteScores(const Projection& projection, const GreyWindow& window) {
    ContrastScores scores(projection, window);
    if (!scores.MakeBytes()) return false;
    Projection ofScores = projection;
    ofScores.grid = scores.Grid();
    RenderLargestBytes(ofScores);
    ClearBorder(projection);
    if (!scores.HasLarge()) return true;
    const BestOfBytes mode(projection, window.Accepted());
    RenderAgain(ofScores, RuleOf(mode, ofScores.grid), kLargestGrey);
    return true;
}

bool RenderWordScores(const Projection& projection, const GreyWindow& window) {
    ContrastScores scores(projection, window);
    if (!scores.MakeWords()) return false;
    const BestOfWords mode;
    Projection ofScores = projection;
    ofScores.grid = scores.Grid();
    RenderAllSamples(ofScores, RuleOf(mode, ofScores.grid));
    return true;
}

// False where there are no scores to be projected: a mask is wanted, or memory is short.
bool RenderScores(const Projection& projection, const GreyWindow& window) {
    if (window.IsEmpty() || projection.grid.depth < kSmallestScoredDepth) return false;
    return RenderByteScores(projection, window) || RenderWordScores(projection, window);
}

} // namespace

void ContrastProjectionGrey(const Projection& projection) {
    const GreyWindow window = WindowOf<Grey>(projection, WindowTest::Strict);
    if (RenderScores(projection, window)) return;
    const GreyContrast mode(projection, window);
    Render(projection, RuleOf(mode, projection.grid));
}

void ContrastProjectionRgb(const Projection& projection) {
    const ColourContrast mode(projection);
    const SideStep step(projection);
    const NeighbourSource source = {projection.grid, step};
    Render(projection, RuleOf(mode, source));
}

} // namespace z3d::render::Z3D_ISA
