#include "render/InstructionSet.h"

#include <atomic>

#include <cpuid.h>

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

InstructionSet Detect() {
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
    return InstructionSet::Avx512;
}

// Null until first asked. Every thread would store the same address.
std::atomic<const KernelTable*> currentKernels{nullptr};

} // namespace

InstructionSet BestInstructionSet() { return Detect(); }

const KernelTable& KernelsOf(InstructionSet set) {
    switch (set) {
    case InstructionSet::Avx512:
        return avx512::kKernels;
    case InstructionSet::Avx2:
        return avx2::kKernels;
    default:
        return sse2::kKernels;
    }
}

const KernelTable& CurrentKernels() {
    const KernelTable* kernels = currentKernels.load(std::memory_order_relaxed);
    if (kernels == nullptr) {
        kernels = &KernelsOf(Detect());
        currentKernels.store(kernels, std::memory_order_relaxed);
    }
    return *kernels;
}

void ForceInstructionSet(InstructionSet set) {
    currentKernels.store(&KernelsOf(set), std::memory_order_relaxed);
}

} // namespace z3d::render
