// Every mode there is, for tests that go through all of them: a new mode is added here once.
#pragma once

#include "Zentra3DRendering.h"

#include <algorithm>
#include <cstddef>

namespace z3d::test {

// In the order of their numbers.
inline constexpr RenderMode kRenderModes[] = {RenderModeMaximum, RenderModeMinimum, RenderModeSum,
                                              RenderModeSurface, RenderModeBlend,   RenderModeContrast,
                                              RenderModeFirstHit};
inline constexpr std::size_t kRenderModeCount = sizeof kRenderModes / sizeof *kRenderModes;

// For tables of tests with rows by mode.
template <class Row, std::size_t kCount>
constexpr bool HaveEveryMode(const Row (&rows)[kCount]) {
    return std::ranges::all_of(kRenderModes, [&](RenderMode mode) {
        return std::ranges::any_of(rows, [&](const Row& row) { return row.mode == mode; });
    });
}

// Hosts can pass any 16 bits: numbers beside the first and the last mode, and the ends.
inline constexpr short kUnknownModes[] = {-32768, -1,
                                          static_cast<short>(kRenderModes[kRenderModeCount - 1] + 1),
                                          static_cast<short>(kRenderModes[kRenderModeCount - 1] + 2), 32767};

} // namespace z3d::test
