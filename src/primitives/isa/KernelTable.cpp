#include "primitives/isa/Kernels.h"

namespace z3d::primitives::Z3D_ISA {

extern const KernelTable kKernels;
const KernelTable kKernels = {
    ComposeBytes,
    ComposeFloats,
};

} // namespace z3d::primitives::Z3D_ISA
