// Which of the library's instruction sets run on this processor.
#pragma once

namespace z3d::platform {

// Avx512Gather is AVX-512 on processors that are quick at gathering: where microcode guards gathers, plain loads beat
// them. No flag says so, but all processors with AVX512-FP16 came after those that have to be guarded.
enum class InstructionSet { Sse2, Avx2, Avx512, Avx512Gather };
constexpr InstructionSet kInstructionSets[] = {InstructionSet::Sse2, InstructionSet::Avx2,
                                               InstructionSet::Avx512, InstructionSet::Avx512Gather};

// The widest one that both the processor and the operating system support.
InstructionSet BestInstructionSet();

// The one in use: the best, asked for once per process, unless a test has forced another.
InstructionSet CurrentInstructionSet();

// For tests and benchmarks. The processor must have it. Not for use while another thread is in the library.
void ForceInstructionSet(InstructionSet set);

} // namespace z3d::platform
