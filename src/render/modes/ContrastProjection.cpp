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

} // namespace

void ContrastProjectionGrey(const ProjectionJob& job) { RenderWith(job, ContrastRule<Grey>(job)); }
void ContrastProjectionRgb(const ProjectionJob& job) { RenderWith(job, ContrastRule<Rgb>(job)); }

} // namespace z3d::render::Z3D_ISA
