#include "render/kernels/walks/Render.h"

#include "render/kernels/walks/BestFirstWalk.h"
#include "render/kernels/walks/PacketWalk.h"
#include "render/kernels/walks/RowWalk.h"

namespace z3d::render::Z3D_ISA {
namespace {

// Each walk has a stack frame of its own: the compiler must not add them up.
[[gnu::noinline]] void RenderRows(const Projection& projection, const Rule& rule) {
    RowWalk(projection, rule).Render();
}

[[gnu::noinline]] void RenderPackets(const Projection& projection, const Rule& rule) {
    PacketWalk walk(projection, rule);
    walk.PrepareSkipping();
    walk.Render(rule.shape.border);
}

[[gnu::noinline]] void RenderPacketsWithoutTable(const Projection& projection, const Rule& rule,
                                                 std::int32_t firstRow) {
    PacketWalk(projection, rule).Render(firstRow);
}

// Returns the rows that it has rendered: fewer than there are where a table cannot be had, or does not pay.
[[gnu::noinline]] std::int32_t RenderBestFirst(const Projection& projection, const Rule& rule,
                                               const GreyExtreme& mode) {
    BestFirstWalk walk(projection, rule, mode);
    return walk.Prepare() ? walk.Render() : 0;
}

void FillImage(const Projection& projection, const Rule& rule) {
    const std::int32_t border = rule.shape.border;
    for (std::int32_t row = border; row < projection.view.outputHeight - border; ++row)
        FillWithInitial(projection, rule, row, border, projection.view.outputWidth - border);
}

bool CanReduceRows(const Projection& projection, const Rule& rule) {
    return rule.reduceRows != nullptr && RowWalk::Fits(projection);
}

} // namespace

void Render(const Projection& projection, const Rule& rule) {
    if (rule.isEmpty) return FillImage(projection, rule);
    if (CanReduceRows(projection, rule)) return RenderRows(projection, rule);
    RenderPackets(projection, rule);
}

void RenderExtreme(const Projection& projection, const Rule& rule, const GreyExtreme& mode) {
    if (rule.isEmpty) return FillImage(projection, rule);
    if (CanReduceRows(projection, rule)) return RenderRows(projection, rule);
    const std::int32_t rendered = RenderBestFirst(projection, rule, mode);
    if (rendered < projection.view.outputHeight) RenderPacketsWithoutTable(projection, rule, rendered);
}

void RenderAllSamples(const Projection& projection, const Rule& rule) {
    RenderPacketsWithoutTable(projection, rule, rule.shape.border);
}

} // namespace z3d::render::Z3D_ISA
