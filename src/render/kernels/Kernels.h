// The kernels of one instruction set: what the mode sources define.
#pragma once

#include "render/KernelTable.h"
#include "render/kernels/vector/Vector.h"

namespace z3d::render::Z3D_ISA {

Kernel MaxProjectionGrey, MaxProjectionRgb;
Kernel MinProjectionGrey, MinProjectionRgb;
Kernel SumProjectionGrey, SumProjectionRgb;
Kernel FirstSurfaceGrey, FirstSurfaceRgb;
Kernel LayeredSurfaceGrey, LayeredSurfaceRgb;
Kernel TranslucentBlendGrey, TranslucentBlendRgb;
Kernel ContrastProjectionGrey, ContrastProjectionRgb;
Kernel FirstHitGrey, FirstHitRgb;

} // namespace z3d::render::Z3D_ISA
