#include "render/kernels/Kernels.h"

namespace z3d::render::Z3D_ISA {

extern const KernelTable kKernels;
const KernelTable kKernels = {
    .maximum = {MaxProjectionGrey, MaxProjectionRgb},
    .minimum = {MinProjectionGrey, MinProjectionRgb},
    .sum = {SumProjectionGrey, SumProjectionRgb},
    .firstSurface = {FirstSurfaceGrey, FirstSurfaceRgb},
    .layeredSurface = {LayeredSurfaceGrey, LayeredSurfaceRgb},
    .blend = {TranslucentBlendGrey, TranslucentBlendRgb},
    .contrast = {ContrastProjectionGrey, ContrastProjectionRgb},
    .firstHit = {FirstHitGrey, FirstHitRgb},
};

} // namespace z3d::render::Z3D_ISA
