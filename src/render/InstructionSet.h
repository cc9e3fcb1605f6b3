// Which kernels run on this processor.
#pragma once

#include "render/KernelTable.h"

namespace z3d::render {

enum class InstructionSet { Sse2, Avx2, Avx512 };
constexpr InstructionSet kInstructionSets[] = {InstructionSet::Sse2, InstructionSet::Avx2,
                                               InstructionSet::Avx512};

// The widest one that both the processor and the operating system support.
InstructionSet BestInstructionSet();

// The kernels of an instruction set. All give the same results.
const KernelTable& KernelsOf(InstructionSet set);

// The kernels in use: those of the best instruction set, unless a test has forced another.
const KernelTable& CurrentKernels();

// For tests and benchmarks. The processor must have it. Not for use while another thread renders.
void ForceInstructionSet(InstructionSet set);

} // namespace z3d::render
