#include "render/kernels/walks/Render.h"

#include "render/kernels/walks/BestFirstWalk.h"
#include "render/kernels/walks/ColumnView.h"
#include "render/kernels/walks/LineWalk.h"
#include "render/kernels/walks/LoneRays.h"
#include "render/kernels/walks/PacketWalk.h"

namespace z3d::render::Z3D_ISA {
namespace {

// Each walk has a stack frame of its own: the compiler must not add them up.
void TrimRays(const ProjectionRenderer& view, const double* x, const double* y, int count,
              std::int32_t* first, std::int32_t* samples) {
    const RaySetup setup(view);
    for (int ray = 0; ray < count; ray += kDoubleLanes)
        setup.Trim(LoadDoubles(x + ray), LoadDoubles(y + ray), first + ray, samples + ray);
}

[[gnu::noinline]] bool HasMuchToSkip(const Projection& projection, const Rule& rule) {
    return PacketWalk(projection, rule).HasMuchToSkip();
}

[[gnu::noinline]] bool RenderPaths(const Projection& projection, const Rule& rule, const ViewLines& lines) {
    LineWalk walk(projection, rule, lines);
    if (!walk.Prepare()) return false;
    walk.Render();
    return true;
}

// False, with nothing rendered, where the view has no lines, or memory is short.
[[gnu::noinline]] bool RenderLines(const Projection& projection, const Rule& rule) {
    if (rule.reduceRows == nullptr) return false;
    ViewLines lines(projection, {.trim = TrimRays,
                                 .backToFront = rule.shape.backToFront,
                                 .samplesPastEnd = rule.shape.samplesPastEnd,
                                 .sampleLimit = rule.shape.sampleLimit});
    if (!lines.FindAxes()) return false;
    // Laying all voxels out anew does not pay where nearly all rays end with their first samples.
    const bool isLaidOut = lines.Axis() != 0 && rule.shape.sampleLimit > 1;
    if (isLaidOut && rule.looks.first < kSamples && !HasMuchToSkip(projection, rule)) return false;
    // Then the paths, which take memory, and the pixels that share none.
    if (!lines.FindPaths()) return false;
    if (!RenderPaths(projection, rule, lines)) return false;
    RenderLoneRays(projection, rule, lines);
    return true;
}

// False, with nothing rendered, where rays do not run along an axis of the volume, or memory is short.
[[gnu::noinline]] bool RenderColumns(const Projection& projection, const Rule& rule) {
    if (rule.reduceRows == nullptr) return false;
    ColumnView view(projection);
    if (!view.Prepare() || !RenderLines(view.Columns(), rule)) return false;
    view.LookUp(rule);
    return true;
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
    // A border that the mode leaves out keeps the zeroes that the image is made of.
    const std::int32_t border = rule.shape.border;
    for (std::int32_t row = border; row < projection.view.outputHeight - border; ++row)
        FillWithInitial(projection, rule, row, border, projection.view.outputWidth - border);
}

} // namespace

// From the fastest walk to the one that can do everything. Each says for itself whether it can, before it has rendered
// anything that the next one would not render again.
void Render(const Projection& projection, const Rule& rule) {
    // No voxel counts: no ray needs to be followed.
    if (rule.isEmpty) return FillImage(projection, rule);
    if (RenderLines(projection, rule) || RenderColumns(projection, rule)) return;
    RenderPackets(projection, rule);
}

// The same, but packets only do the rows that are left. The best-first walk has tried the table by then: where it has
// given up, packets would find that it does not pay either.
void RenderExtreme(const Projection& projection, const Rule& rule, const GreyExtreme& mode) {
    if (rule.isEmpty) return FillImage(projection, rule);
    if (RenderLines(projection, rule) || RenderColumns(projection, rule)) return;
    const std::int32_t rendered = RenderBestFirst(projection, rule, mode);
    if (rendered < projection.view.outputHeight) RenderPacketsWithoutTable(projection, rule, rendered);
}

// Scores are not voxels: there is no table of bounds for them, nor are they laid out in lines.
void RenderAllSamples(const Projection& projection, const Rule& rule) {
    RenderPacketsWithoutTable(projection, rule, rule.shape.border);
}

void RenderAgain(const Projection& projection, const Rule& rule, float value) {
    PacketWalk(projection, rule).RenderAgain(value);
}

} // namespace z3d::render::Z3D_ISA
