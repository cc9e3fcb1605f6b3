// The walk for views in lines (ViewLines): the rays of a line take the same path through lines of voxels, so these are
// reduced whole, sixteen voxels at a time.
//
// What is reduced next lies near in memory: sixteen lines go side by side, sixteen samples deep, over up to 512
// pixels. Lines of x are rows of voxels; those of y and z are laid out first, a slab at a time, or picked out voxel by
// voxel where rays take no more than one.
#pragma once

#include "render/kernels/sampling/SampleStepper.h"
#include "render/kernels/walks/Rule.h"
#include "render/kernels/walks/VoxelSlab.h"
#include "render/tables/ViewLines.h"

namespace z3d::render::Z3D_ISA {

// For rules that reduce rows.
class LineWalk {
public:
    LineWalk(const Projection& projection, const Rule& rule, const ViewLines& lines);

    // False, with nothing rendered, where memory is short.
    bool Prepare() { return source_ != Source::Slab || slab_.Allocate(); }

    // All but the pixels that are rays by themselves, which get the initial value at most.
    void Render();

private:
    enum class Source { Rows, Slab, Picked }; // of the voxels of a line

    static constexpr std::size_t kStateBytes = 64 << 10;
    static constexpr std::int32_t kGroupStep = 4; // all rules reduce so many together, or a part of them

    static Source SourceOf(const Rule& rule, const ViewLines& lines);
    static std::int32_t MostGroupsOf(const Rule& rule);
    static SampleStepper StepperOf(const Projection& projection, const Rule& rule, const ViewLines& lines);
    static VoxelSlab::Extent ExtentOf(const Projection& projection, const Rule& rule, const ViewLines& lines);

    void FillAround();
    void RenderRows();
    void RenderSlabs();
    void ChooseGroups(std::int32_t first, std::int32_t most);
    void StartLines(std::int32_t line);
    void ReduceLines();
    void FindVoxels(int row, int samples);
    void FindShortRows(int samples);
    template <int kBytes>
    void PickVoxels(std::int32_t x, std::int32_t other);
    void FinishLines(std::int32_t line);
    void FinishGroup(std::int32_t line, std::int32_t group, const std::byte* state);
    std::byte* StatesOf(int row) { return states_ + row * rows_.groups * rule_.stateBytes; }

    const Projection& projection_;
    const Rule& rule_;
    const ViewLines& lines_;
    const Source source_;
    const std::int32_t mostGroups_;
    VoxelSlab slab_;
    const SampleStepper stepper_;
    std::int32_t firstVoxel_ = 0; // of the places that are rendered, and those of a block
    std::int32_t lastVoxel_ = -1;
    std::int32_t blockFirst_ = 0;
    std::int32_t blockLast_ = -1;
    std::int32_t base_[kMostGroups]; // first voxel of each group
    Positions starts_;               // here a ray stands for a line
    std::int32_t samples_[kRays];    // 0 for a line without
    std::int32_t longest_ = 0;
    Indexes indexes_;
    VoxelRows rows_ = {};
    std::uint8_t shortRows_[kSamples][kRays * 3] = {};
    std::uint8_t picked_[kMostGroups * kRays * 3] = {};
    alignas(64) std::byte states_[kStateBytes];
};

} // namespace z3d::render::Z3D_ISA
