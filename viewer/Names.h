// Names that people read, in the order of modes, sides and palettes.
#pragma once

#include "View.h"

namespace z3d::viewer {

inline constexpr const wchar_t* kModeTitles[kModeCount] = {L"Maximum", L"Minimum", L"Sum",      L"Surface",
                                                           L"Layers",  L"Blend",   L"Contrast", L"First hit"};
static_assert(kModeTitles[kModeCount - 1] != nullptr, "each mode has a title");

inline constexpr const wchar_t* kSideTitles[kSideCount] = {L"Front", L"Back", L"Left",
                                                           L"Right", L"Top",  L"Bottom"};

inline constexpr const wchar_t* kPaletteTitles[] = {L"Grey", L"Fire", L"Viridis"};

} // namespace z3d::viewer
