// Mode 5, local contrast: the largest difference, along each ray, between a voxel and its neighbours one
// output column to the side and (grey) one output row up or down. Edges come out bright, flat regions dark.
//
// Departures from the frame:
// - the outermost rows and columns of the output are not rendered and hold 0
// - the window is strict, for the voxel and for its neighbours: one outside adds nothing
// - grey measures four neighbours, from the voxel's indexes; colour one, from the unrounded position
// - volumes of 1 or 2 slices score 1 for every voxel in the window: a mask of the window
// - a best score of 0 leaves the initial value
#include "render/isa/Kernels.h"
#include "render/isa/NeighbourContrast.h"
#include "render/isa/Render.h"
#include "render/isa/ScoreVolume.h"

namespace z3d::render::Z3D_ISA {
namespace {

template <class VoxelFormat>
struct ContrastRule : RuleDefaults {
    using Format = VoxelFormat;
    static constexpr std::int32_t kBorder = 1;
    static constexpr bool kUsesIndexes = true;
    static constexpr bool kUsesPositions = Format::kBytes == 3;
    struct Lanes {
        std::int32_t best[kRays];
        std::uint8_t colour[kRays][3]; // of the voxel with the best score
    };
    typename Format::Window window;
    NeighbourContrast<Format> contrast;

    explicit ContrastRule(const ProjectionJob& job)
        : window(StrictRange(Format::kLargest, job.low, job.high)), contrast(job, window.Range()) {}

    Z3D_INLINE void Sample(const typename Format::Sample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes accepted = window.Accepts(sample) & isValid;
        for (unsigned rays = BitsOf(accepted); rays != 0; rays &= rays - 1) {
            const int ray = __builtin_ctz(rays);
            const std::int32_t score = contrast.ScoreAt(sample.at, ray);
            if (score <= lanes.best[ray]) continue;
            lanes.best[ray] = score;
            contrast.CopyVoxel(sample.at, ray, lanes.colour[ray]);
        }
    }
    // Grey shows the score. Colour keeps the voxel's proportions, scaled to sum to it; a black voxel has none.
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        const std::int32_t best = lanes.best[ray];
        const std::int32_t sum = Rgb::ValueOf(lanes.colour[ray]);
        if (best <= 0 || (Format::kBytes == 3 && sum == 0)) return;
        for (int c = 0; c < 3; ++c) {
            pixel[c] = Format::kBytes == 1
                           ? static_cast<float>(best)
                           : static_cast<float>(static_cast<double>(lanes.colour[ray][c]) * best / sum);
        }
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

} // namespace

void ContrastProjectionGrey(const ProjectionJob& job) {
    const ContrastRule<Grey> rule(job);
    if (job.grid.depth >= kSmallestScoredDepth && !rule.window.IsEmpty()) {
        const ScoreVolume scores(job, rule.window);
        if (scores.IsReady()) {
            PacketWalk<LargestScore>(job, {}, scores.Slices(), nullptr).Render();
            return;
        }
    }
    RenderWith(job, rule);
}

void ContrastProjectionRgb(const ProjectionJob& job) { RenderWith(job, ContrastRule<Rgb>(job)); }

} // namespace z3d::render::Z3D_ISA
