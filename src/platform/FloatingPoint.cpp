#include "platform/FloatingPoint.h"

namespace z3d::platform {
namespace {

constexpr std::uint16_t kLibraryX87Control = 0x037F; // all masked, 64-bit mantissa, round to nearest
constexpr std::uint32_t kLibraryMxcsr = 0x1F80;      // all masked, round to nearest, denormals kept

} // namespace

void EnterLibraryFloatingPoint(FloatingPointState& saved) {
    // FNSTENV also masks every x87 exception, so a pending one cannot fire before FNCLEX drops it.
    asm volatile("fnstenv %0\n\t"
                 "fnclex\n\t"
                 "fldcw %2\n\t"
                 "stmxcsr %1\n\t"
                 "ldmxcsr %3"
                 : "=m"(saved.x87), "=m"(saved.mxcsr)
                 : "m"(kLibraryX87Control), "m"(kLibraryMxcsr)
                 : "memory");
}

void RestoreFloatingPoint(const FloatingPointState& saved) {
    asm volatile("fnclex\n\t"
                 "fldenv %0\n\t"
                 "ldmxcsr %1"
                 :
                 : "m"(saved.x87), "m"(saved.mxcsr)
                 : "memory");
}

} // namespace z3d::platform
