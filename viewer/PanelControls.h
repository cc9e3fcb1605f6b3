// What stands on the panel, and where: at 96 dots per inch, in the order of the tab key.
#pragma once

#include <windows.h>

#include <span>

#include "View.h"

namespace z3d::viewer {

// Controls that no command stands behind. Families count on from their first.
enum PanelId : int {
    kAngleEdit = 1000, // x, y, z
    kModeList = 1010,
    kPaletteList,
    kExtraLabel,
    kExtraSlider,
    kExtraValue,
    kWindowSlider = 1020, // low, high
    kWindowValue = 1024,
    kRangeSlider = 1030, // black, white
    kRangeValue = 1034,
    kAutomatic = 1038,
    kCropSlider = 1040, // x0, x1, y0, y1, z0, z1
    kCropValue = 1050,
    kWholeVolume = 1058,
    kCommandText = 1060,
};

struct ControlPlan {
    int id;
    const wchar_t* kind;
    const wchar_t* text;
    DWORD style;
    int x, y, width, height;
};

inline constexpr int kPanelWidth = 300;
inline constexpr int kPanelHeight = 714;

std::span<const ControlPlan> PanelPlan();

} // namespace z3d::viewer
