// How a rule is rendered: by rows, by packets, or not at all.
#pragma once

#include "render/isa/BestFirstWalk.h"
#include "render/isa/PacketWalk.h"
#include "render/isa/RowWalk.h"

namespace z3d::render::Z3D_ISA {

// Nothing can contribute.
template <class Rule>
void FillWithInitial(const ProjectionJob& job) {
    for (std::int32_t row = Rule::kBorder; row < job.geometry.outputHeight - Rule::kBorder; ++row)
        FillRowWithInitial<Rule>(job, row);
}

// True when the projection is done: nothing can contribute, or whole rows could be reduced.
template <class Rule>
bool RenderShortcut(const ProjectionJob& job, const Rule& rule) {
    if (rule.window.IsEmpty()) {
        FillWithInitial<Rule>(job);
        return true;
    }
    if (rule.Margin() != 0 || !HasVolumeColumns(job)) return false;
    RowWalk<Rule>(job, rule).Render();
    return true;
}

// By packets, in order.
template <class Rule>
void RenderPackets(const ProjectionJob& job, const Rule& rule, typename Rule::Format::Grid grid) {
    if (rule.window.IsEmpty()) {
        FillWithInitial<Rule>(job);
        return;
    }
    PacketWalk<Rule> walk(job, rule, grid);
    walk.PrepareSkipping();
    walk.Render();
}

template <class Rule>
void RenderWith(const ProjectionJob& job, const Rule& rule) {
    if (!RenderShortcut(job, rule)) RenderPackets(job, rule, job.grid);
}

// For rules whose samples may be taken in any order.
template <class Rule>
void RenderBestFirst(const ProjectionJob& job, const Rule& rule) {
    if (RenderShortcut(job, rule)) return;
    std::int32_t nextRow = 0;
    if (SkipTable::IsUsable(job) && BestFirstWalk<Rule>(job, rule).Render(nextRow)) return;
    PacketWalk<Rule>(job, rule, job.grid).Render(nextRow);
}

} // namespace z3d::render::Z3D_ISA
