#include "platform/InstructionSet.h"

#include <atomic>
#include <cstdint>

#include <cpuid.h>

namespace z3d::platform {
namespace {

// Register state that the operating system saves: XGETBV, register 0.
constexpr std::uint32_t kSavesYmm = 0x06;
constexpr std::uint32_t kSavesZmm = 0xE6;

std::uint32_t SavedRegisterState() {
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

constexpr bool Has(std::uint32_t flags, std::uint32_t wanted) { return (flags & wanted) == wanted; }

// Below every instruction set: not asked yet.
constexpr int kUnknown = -1;

// Every thread that asks first would store the same.
std::atomic<int> knownBest{kUnknown};
std::atomic<int> current{kUnknown};

InstructionSet AskForBest() {
    std::uint32_t eax = 0;
    std::uint32_t ebx = 0;
    std::uint32_t ecx = 0;
    std::uint32_t edx = 0;
    if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) == 0 || !Has(ecx, bit_OSXSAVE | bit_AVX)) {
        return InstructionSet::Sse2;
    }
    const std::uint32_t state = SavedRegisterState();
    if (!Has(state, kSavesYmm) || __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) == 0
        || !Has(ebx, bit_AVX2)) {
        return InstructionSet::Sse2;
    }
    if (!Has(state, kSavesZmm) || !Has(ebx, bit_AVX512F | bit_AVX512DQ | bit_AVX512BW | bit_AVX512VL)) {
        return InstructionSet::Avx2;
    }
    return Has(edx, bit_AVX512FP16) ? InstructionSet::Avx512Gather : InstructionSet::Avx512;
}

} // namespace

// Asked once: on a virtual machine a question to the processor takes as long as a small picture.
InstructionSet BestInstructionSet() {
    int known = knownBest.load(std::memory_order_relaxed);
    if (known == kUnknown) {
        known = static_cast<int>(AskForBest());
        knownBest.store(known, std::memory_order_relaxed);
    }
    return static_cast<InstructionSet>(known);
}

InstructionSet CurrentInstructionSet() {
    const int known = current.load(std::memory_order_relaxed);
    if (known != kUnknown) return static_cast<InstructionSet>(known);
    const InstructionSet best = BestInstructionSet();
    ForceInstructionSet(best);
    return best;
}

void ForceInstructionSet(InstructionSet set) {
    current.store(static_cast<int>(set), std::memory_order_relaxed);
}

} // namespace z3d::platform
