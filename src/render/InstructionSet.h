// The kernels of the instruction set in use.
#pragma once

#include "platform/InstructionSet.h"
#include "render/KernelTable.h"

namespace z3d::render {

using platform::BestInstructionSet;
using platform::ForceInstructionSet;
using platform::InstructionSet;
using platform::kInstructionSets;

// The kernels of an instruction set. All give the same results.
const KernelTable& KernelsOf(InstructionSet set);

// Those of the current one.
const KernelTable& CurrentKernels();

} // namespace z3d::render
