// Mode 5, local contrast: the largest difference, along each ray, between a voxel and its neighbours one
// output column to the side and (grey) one output row up or down. Edges come out bright, flat regions dark.
//
// Departures from the frame:
// - the outermost rows and columns of the output are not rendered and hold 0
// - the window is strict, for the voxel and for its neighbours: one outside adds nothing
// - grey measures four neighbours, from the voxel's indexes; colour one, from the unrounded position
// - volumes of 1 or 2 slices score 1 for every voxel in the window: a mask of the window
// - a best score of 0 leaves the initial value
#include "render/isa/ColourContrast.h"
#include "render/isa/Kernels.h"
#include "render/isa/NeighbourContrast.h"
#include "render/isa/Render.h"
#include "render/isa/ScoreVolume.h"

namespace z3d::render::Z3D_ISA {
namespace {

// Grey where there is no memory for scores, or no scores.
struct NeighbourContrastGrey : RuleDefaults {
    using Format = Grey;
    static constexpr std::int32_t kBorder = 1;
    struct Lanes {
        std::int32_t best[kRays];
    };
    GreyWindow window;
    NeighbourContrast contrast;

    explicit NeighbourContrastGrey(const ProjectionJob& job)
        : window(StrictRange(kLargestGrey, job.low, job.high)), contrast(job, window.Range()) {}

    Z3D_INLINE void Sample(const GreySample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        for (unsigned rays = BitsOf(accepted); rays != 0; rays &= rays - 1) {
            const int ray = __builtin_ctz(rays);
            const std::int32_t score = contrast.ScoreAt(sample.at, ray);
            if (score > lanes.best[ray]) lanes.best[ray] = score;
        }
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        if (lanes.best[ray] > 0) pixel[0] = pixel[1] = pixel[2] = static_cast<float>(lanes.best[ray]);
    }
};

// Over the scores of all voxels: grey again, where there is memory for them.
struct LargestScore : RuleDefaults {
    using Format = Score;
    static constexpr std::int32_t kBorder = 1;
    using Lanes = Sums;

    Z3D_INLINE void Sample(const ScoreSample& sample, Bytes isValid, Lanes& best) const {
        const __m128i low = _mm_unpacklo_epi8(Raw(isValid), Raw(isValid));
        const __m128i high = _mm_unpackhi_epi8(Raw(isValid), Raw(isValid));
        best.low = _mm_max_epi16(best.low, _mm_and_si128(sample.value.low, low));
        best.high = _mm_max_epi16(best.high, _mm_and_si128(sample.value.high, high));
    }
    void Finish(const Lanes& best, int ray, float* pixel) const {
        std::uint16_t scores[kRays];
        __builtin_memcpy(scores, &best, sizeof scores);
        if (scores[ray] > 0) pixel[0] = pixel[1] = pixel[2] = scores[ray];
    }
};

// Colour keeps the proportions of the voxel with the best score, scaled to sum to it; a black voxel has none.
struct NeighbourContrastRgb : RuleDefaults {
    using Format = RgbWithNeighbour;
    static constexpr std::int32_t kBorder = 1;
    static constexpr bool kUsesPositions = true;
    struct Lanes {
        Sums best;
        Bytes colour[3]; // of the voxel with the best score
    };
    RgbWindow window;
    bool isScored;

    Z3D_INLINE void Sample(const NeighbourSample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample.voxel) & isValid;
        const Bytes counted = isScored ? accepted & window.Accepts(sample.beside) : accepted;
        const Sums sums = sample.voxel.Sum();
        const Sums others = sample.beside.Sum();
        const __m128i low =
            Better(sums.low, others.low, _mm_unpacklo_epi8(Raw(counted), Raw(counted)), lanes.best.low);
        const __m128i high =
            Better(sums.high, others.high, _mm_unpackhi_epi8(Raw(counted), Raw(counted)), lanes.best.high);
        const Bytes isBetter = ToBytes(_mm_packs_epi16(low, high));
        for (int c = 0; c < 3; ++c)
            lanes.colour[c] = (sample.voxel.channel[c] & isBetter) | (lanes.colour[c] & ~isBetter);
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        std::uint16_t scores[kRays];
        __builtin_memcpy(scores, &lanes.best, sizeof scores);
        const int sum = lanes.colour[0][ray] + lanes.colour[1][ray] + lanes.colour[2][ray];
        if (scores[ray] == 0 || sum == 0) return;
        for (int c = 0; c < 3; ++c)
            pixel[c] = static_cast<float>(static_cast<double>(lanes.colour[c][ray]) * scores[ray] / sum);
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

} // namespace

void ContrastProjectionGrey(const ProjectionJob& job) {
    const NeighbourContrastGrey rule(job);
    if (job.grid.depth >= kSmallestScoredDepth && !rule.window.IsEmpty()) {
        const ScoreVolume scores(job, rule.window);
        if (scores.IsReady()) {
            PacketWalk<LargestScore>(job, {}, scores.Slices()).Render();
            return;
        }
    }
    RenderPackets(job, rule, job.grid);
}

void ContrastProjectionRgb(const ProjectionJob& job) {
    const NeighbourContrastRgb rule = {
        {}, RgbWindow(StrictRange(kLargestSum, job.low, job.high)), job.grid.depth >= kSmallestScoredDepth};
    const SideStep step(job);
    RenderPackets(job, rule, {job.grid, step});
}

} // namespace z3d::render::Z3D_ISA
