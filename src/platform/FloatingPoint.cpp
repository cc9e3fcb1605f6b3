#include "platform/FloatingPoint.h"

namespace z3d::platform {
namespace {

constexpr std::uint32_t kLibraryMxcsr = 0x1F80; // all masked, round to nearest, denormals kept

} // namespace

#ifdef __x86_64__

void EnterLibraryFloatingPoint(FloatingPointState& saved) {
    // FXSAVE64 neither waits for pending exceptions nor changes anything, and FNINIT does not wait either: it masks
    // every exception, drops every flag, and sets a 64-bit mantissa, round to nearest and no register in use.
    asm volatile("fxsave64 %0\n\t"
                 "fninit\n\t"
                 "ldmxcsr %1"
                 : "=m"(saved.image)
                 : "m"(kLibraryMxcsr)
                 : "memory");
}

void RestoreFloatingPoint(const FloatingPointState& saved) {
    // The image holds the sixteen SSE registers too, of long ago by now: the compiler keeps those that are its caller's.
    asm volatile("fxrstor64 %0"
                 :
                 : "m"(saved.image)
                 : "memory", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9",
                   "xmm10", "xmm11", "xmm12", "xmm13", "xmm14", "xmm15");
}

#else

void EnterLibraryFloatingPoint(FloatingPointState& saved) {
    // FNSAVE does not wait for pending exceptions. It leaves the unit as FNINIT does: every exception masked, no
    // flag, 64-bit mantissa, round to nearest, no register in use.
    asm volatile("fnsave %0\n\t"
                 "stmxcsr %1\n\t"
                 "ldmxcsr %2"
                 : "=m"(saved.x87), "=m"(saved.mxcsr)
                 : "m"(kLibraryMxcsr)
                 : "memory");
}

void RestoreFloatingPoint(const FloatingPointState& saved) {
    asm volatile("fnclex\n\t"
                 "frstor %0\n\t"
                 "ldmxcsr %1"
                 :
                 : "m"(saved.x87), "m"(saved.mxcsr)
                 : "memory");
}

#endif

} // namespace z3d::platform
