// How a rule is rendered: by rows, by packets, or not at all.
#pragma once

#include "render/isa/PacketWalk.h"
#include "render/isa/RowWalk.h"

namespace z3d::render::Z3D_ISA {

// Nothing can contribute.
template <class Rule>
void FillWithInitial(const ProjectionJob& job) {
    const std::int32_t width = job.geometry.outputWidth;
    const std::int32_t height = job.geometry.outputHeight;
    for (std::int32_t row = Rule::kBorder; row < height - Rule::kBorder; ++row) {
        float* pixels = job.pixels + 3 * static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
        for (std::int32_t index = 3 * Rule::kBorder; index < 3 * (width - Rule::kBorder); ++index) {
            pixels[index] = Rule::kInitial;
        }
    }
}

template <class Rule>
void RenderWith(const ProjectionJob& job, const Rule& rule) {
    if (rule.window.IsEmpty()) {
        FillWithInitial<Rule>(job);
        return;
    }
    if (rule.Margin() == 0 && job.rayRows != nullptr && HasVolumeColumns(job)) {
        RowWalk<Rule>(job, rule).Render();
        return;
    }
    if (!SkipTable::IsUsable(job)) {
        PacketWalk<Rule>(job, rule, nullptr).Render();
        return;
    }
    const SkipTable skips = SkipTable::Make<typename Rule::Format>(job, rule.window, Rule::kMeasure,
                                                                   Rule::kBackToFront, rule.Margin());
    PacketWalk<Rule>(job, rule, &skips).Render();
}

} // namespace z3d::render::Z3D_ISA
