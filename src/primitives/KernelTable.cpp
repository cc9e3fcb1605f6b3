#include "primitives/KernelTable.h"

#include "platform/InstructionSet.h"

namespace z3d::primitives {

namespace sse2 {
extern const KernelTable kKernels;
}
namespace avx2 {
extern const KernelTable kKernels;
}

// Wider registers than those of AVX2 gain nothing here: these loops wait for memory.
const KernelTable& CurrentKernels() {
    return platform::CurrentInstructionSet() == platform::InstructionSet::Sse2 ? sse2::kKernels
                                                                               : avx2::kKernels;
}

} // namespace z3d::primitives
