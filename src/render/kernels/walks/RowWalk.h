// Views in which output columns are volume columns (the identity, and turns about x alone): all rays of an
// output row take the same rows of voxels, so whole rows are reduced, sixteen columns at a time.
//
// What is reduced next lies near in memory: sixteen output rows go side by side, sixteen samples deep, over up
// to 256 columns. One of their rays is followed per output row, and speaks for all of its columns.
#pragma once

#include "render/kernels/rays/RaySetup.h"
#include "render/kernels/sampling/SampleStepper.h"
#include "render/kernels/walks/Rule.h"

namespace z3d::render::Z3D_ISA {

// For rules that reduce rows.
class RowWalk {
public:
    // Whether view x is volume x.
    static bool Fits(const Projection& projection);

    RowWalk(const Projection& projection, const Rule& rule);

    void Render();

private:
    static constexpr std::int32_t kMostGroups = 16; // of sixteen columns, reduced in one go
    static constexpr std::size_t kStateBytes = 64 << 10;

    void FindLiveColumns();
    void StartRays(std::int32_t top, std::int32_t rows);
    void FillAround(std::int32_t top, std::int32_t rows);
    void ReduceColumns(std::int32_t left);
    void FindVoxels(int row, int samples);
    void FinishColumns(std::int32_t top);
    void FinishGroup(std::int32_t row, std::int32_t base, const std::byte* state);
    std::byte* StatesOf(int row) { return states_ + row * groups_ * rule_.stateBytes; }

    const Projection& projection_;
    const ProjectionRenderer& view_;
    const Rule& rule_;
    const SampleStepper stepper_;
    const std::int32_t mostGroups_;
    std::int32_t firstColumn_ = 0; // columns whose rays lie within the crop box
    std::int32_t lastColumn_ = -1;
    Positions starts_;            // of the rays in column 0; here a ray stands for an output row
    std::int32_t samples_[kRays]; // 0 for a row without
    std::int32_t longest_ = 0;
    std::int32_t groups_ = 0;
    std::int32_t base_[kMostGroups]; // first column of each group
    Indexes indexes_;
    const std::uint8_t* voxels_[kSamples];
    std::uint8_t shortRows_[kSamples][kRays * 3] = {};
    alignas(64) std::byte states_[kStateBytes];
};

} // namespace z3d::render::Z3D_ISA
