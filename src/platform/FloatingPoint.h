// The processor's floating-point environment: rounding, precision, masks and sticky flags of both units.
#pragma once

#include <cstdint>

namespace z3d::platform {

// Everything that a caller could notice, bit for bit.
#ifdef __x86_64__
struct alignas(16) FloatingPointState {
    std::uint8_t image[512]; // that of FXSAVE64; FNSAVE would keep half of the addresses of code and data
};
#else
struct FloatingPointState {
    std::uint32_t x87[27]; // the FNSAVE image: control, status and tag word, pointers, eight registers
    std::uint32_t mxcsr;
};
#endif

// Saves the current state, then sets the library's own: every exception masked, round to nearest, 64-bit
// x87 mantissa, denormals kept, no flag raised, no x87 register in use. Hosts run with other precisions,
// unmasked exceptions, flush-to-zero or MMX registers that nobody emptied (x87 arithmetic would find its stack
// full and give NaN); the results must not depend on it, and no exception of ours may reach a host's handler.
void EnterLibraryFloatingPoint(FloatingPointState& saved);

// Puts a saved state back exactly; whatever was raised since is dropped.
void RestoreFloatingPoint(const FloatingPointState& saved);

} // namespace z3d::platform
