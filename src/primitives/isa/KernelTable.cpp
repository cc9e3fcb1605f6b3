#include "primitives/isa/Kernels.h"

namespace z3d::primitives::Z3D_ISA {

extern const KernelTable kKernels;
const KernelTable kKernels = {
    .composeBytes = ComposeBytes,
    .composeFloats = ComposeFloats,
#if defined(__AVX2__)
    .blendByteColumns = BlendByteColumns,
    .blendFloatColumns = BlendFloatColumns,
#else // there are no such shuffles
    .blendByteColumns = nullptr,
    .blendFloatColumns = nullptr,
#endif
    .blendByteRows = BlendByteRows,
    .blendFloatRows = BlendFloatRows,
    .blendBytes = BlendBytes,
    .blendFloats = BlendFloats,
    .extremesOfBytes = ExtremesOfBytes,
    .widenByFloats = WidenByFloats,
};

} // namespace z3d::primitives::Z3D_ISA
