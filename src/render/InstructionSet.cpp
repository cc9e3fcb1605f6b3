#include "render/InstructionSet.h"

namespace z3d::render {

namespace sse2 {
extern const KernelTable kKernels;
}
namespace avx2 {
extern const KernelTable kKernels;
}
namespace avx512 {
extern const KernelTable kKernels;
}

const KernelTable& KernelsOf(InstructionSet set) {
    switch (set) {
    case InstructionSet::Avx512:
    case InstructionSet::Avx512Gather:
        return avx512::kKernels;
    case InstructionSet::Avx2:
        return avx2::kKernels;
    default:
        return sse2::kKernels;
    }
}

const KernelTable& CurrentKernels() { return KernelsOf(platform::CurrentInstructionSet()); }

} // namespace z3d::render
