// Which of the library's instruction sets run on this processor.
#pragma once

namespace z3d::platform {

enum class InstructionSet { Sse2, Avx2, Avx512 };
constexpr InstructionSet kInstructionSets[] = {InstructionSet::Sse2, InstructionSet::Avx2,
                                               InstructionSet::Avx512};

// The widest one that both the processor and the operating system support.
InstructionSet BestInstructionSet();

// The one in use: the best, asked for once per process, unless a test has forced another.
InstructionSet CurrentInstructionSet();

// For tests and benchmarks. The processor must have it. Not for use while another thread is in the library.
void ForceInstructionSet(InstructionSet set);

} // namespace z3d::platform
