#include "platform/FloatingPoint.h"

namespace z3d::platform {
namespace {

constexpr std::uint32_t kLibraryMxcsr = 0x1F80; // all masked, round to nearest, denormals kept

} // namespace

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

} // namespace z3d::platform
