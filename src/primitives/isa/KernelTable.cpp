#include "primitives/isa/Kernels.h"

namespace z3d::primitives::Z3D_ISA {

extern const KernelTable kKernels;
const KernelTable kKernels = {
    .composeBytes = ComposeBytes,
    .composeFloats = ComposeFloats,
    .blendByteColumns = BlendByteColumns,
    .blendFloatColumns = BlendFloatColumns,
    .blendByteRows = BlendByteRows,
    .blendFloatRows = BlendFloatRows,
    .blendBytes = BlendBytes,
    .blendFloats = BlendFloats,
    .extremesOfBytes = ExtremesOfBytes,
    .widenByFloats = WidenByFloats,
};

} // namespace z3d::primitives::Z3D_ISA
