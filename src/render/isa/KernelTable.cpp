#include "render/isa/Kernels.h"

namespace z3d::render::Z3D_ISA {

extern const KernelTable kKernels;
const KernelTable kKernels = {
    {
        {MaxProjectionGrey, MaxProjectionRgb},
        {MinProjectionGrey, MinProjectionRgb},
        {SumProjectionGrey, SumProjectionRgb},
        {FirstSurfaceGrey, FirstSurfaceRgb},
        {TranslucentBlendGrey, TranslucentBlendRgb},
        {ContrastProjectionGrey, ContrastProjectionRgb},
        {FirstHitGrey, FirstHitRgb},
    },
    {LayeredSurfaceGrey, LayeredSurfaceRgb},
};

} // namespace z3d::render::Z3D_ISA
