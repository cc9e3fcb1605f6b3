// Mode 5, local contrast: the largest difference, along each ray, between a voxel and its neighbours one
// output column to the side and (grey) one output row up or down. Edges come out bright, flat regions dark.
//
// Departures from the frame:
// - the outermost rows and columns of the output are not rendered and hold 0
// - the window is strict, for the voxel and for its neighbours: one outside adds nothing
// - grey measures four neighbours, from the voxel's indexes; colour one, from the unrounded position
// - volumes of 1 or 2 slices score 1 for every voxel in the window: a mask of the window
// - a best score of 0 leaves the initial value
#include "render/Modes.h"
#include "render/RayFrame.h"

#include <cstdlib>

namespace z3d::render {
namespace {

constexpr std::int32_t kSmallestScoredDepth = 3;

struct ContrastRule : FrameDefaults {
    static constexpr std::int32_t kBorder = 1;
    StrictWindow window;
    const float* inverse; // columns 0 and 1: one output column and one output row, in volume axes
    bool scored;

    ContrastRule(const ProjectionRenderer& renderer, const RenderArguments& arguments)
        : window{arguments.low, arguments.high},
          inverse(renderer.inverseRotation2),
          scored(renderer.volumeDepth >= kSmallestScoredDepth) {}

    // What the voxel at `point`, moved by a column of the inverse rotation, adds to the score of `value`.
    template <class Voxel, class Coordinate>
    std::int32_t Difference(const VoxelGrid& grid, std::int32_t value, const Coordinate* point, int column,
                            double sign) const {
        const std::int32_t x = NearestVoxel(point[0] + sign * inverse[column], grid.width);
        const std::int32_t y = NearestVoxel(point[1] + sign * inverse[3 + column], grid.height);
        const std::int32_t z = NearestVoxel(point[2] + sign * inverse[6 + column], grid.depth);
        const std::int32_t neighbour = Voxel::Value(grid.At<Voxel::kBytes>(x, y, z));
        return window.Contains(neighbour) ? std::abs(neighbour - value) : 0;
    }
};

struct ContrastGrey : ContrastRule {
    using Voxel = Grey;
    using ContrastRule::ContrastRule;
    struct State {
        std::int32_t best = 0;
    };

    std::int32_t Score(const SampledVoxel& at, std::int32_t value) const {
        if (!scored) return 1;
        const double point[3] = {static_cast<double>(at.x), static_cast<double>(at.y),
                                 static_cast<double>(at.z)};
        return Difference<Grey>(at.grid, value, point, 0, 1) + Difference<Grey>(at.grid, value, point, 0, -1)
               + Difference<Grey>(at.grid, value, point, 1, 1)
               + Difference<Grey>(at.grid, value, point, 1, -1);
    }
    bool Sample(const SampledVoxel& at, float*, State& state) const {
        const std::int32_t value = Grey::Value(at.bytes);
        if (window.Contains(value)) state.best = std::max(state.best, Score(at, value));
        return true;
    }
    void Finish(float* pixel, const State& state) const {
        if (state.best > 0) std::fill_n(pixel, 3, static_cast<float>(state.best));
    }
};

struct ContrastRgb : ContrastRule {
    using Voxel = Rgb;
    using ContrastRule::ContrastRule;
    struct State {
        std::int32_t best = 0;
        std::uint8_t colour[3] = {1, 1, 1}; // of the voxel with the best score
    };

    bool Sample(const SampledVoxel& at, float*, State& state) const {
        const std::int32_t sum = Rgb::Value(at.bytes);
        if (!window.Contains(sum)) return true;
        const std::int32_t score = scored ? Difference<Rgb>(at.grid, sum, at.point, 0, 1) : 1;
        if (score > state.best) {
            state.best = score;
            std::copy_n(at.bytes, 3, state.colour);
        }
        return true;
    }
    // The voxel's proportions, scaled to sum to the score. A black voxel has none.
    void Finish(float* pixel, const State& state) const {
        const std::int32_t sum = Rgb::Value(state.colour);
        if (state.best <= 0 || sum == 0) return;
        for (int c = 0; c < 3; ++c) {
            pixel[c] = static_cast<float>(static_cast<double>(state.colour[c]) * state.best / sum);
        }
    }
};

} // namespace

float* ContrastProjectionGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, ContrastGrey(renderer, arguments));
}

float* ContrastProjectionRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, ContrastRgb(renderer, arguments));
}

} // namespace z3d::render
