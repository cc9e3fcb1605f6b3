// Calls a function as a host in any condition may: raw 32-bit argument slots, a stack that is aligned to 4
// bytes only, any floating-point environment. Reports everything that such a host could notice afterwards.
#pragma once

#include <cstdint>
#include <span>

namespace z3d::test {

// What a host can see of both floating-point units, except for the addresses of the last x87 instruction.
struct FloatingPointEnvironment {
    std::uint16_t x87Control = 0x037F; // all exceptions masked, 64-bit mantissa, round to nearest
    std::uint16_t x87Status = 0;       // bits 0 to 5: sticky flags; bits 11 to 13: top of the stack
    std::uint16_t x87Tags = 0xFFFF;    // two bits per register, 3 = empty
    std::uint32_t mxcsr = 0x1F80;      // all exceptions masked, round to nearest, no flag

    bool operator==(const FloatingPointEnvironment&) const = default;
};

struct CallOutcome {
    std::uint32_t result;           // the EAX register
    std::uint32_t bytesPopped;      // by the callee, beyond its return address
    bool keptRegisters;             // EBX, ESI, EDI and EBP came back as they were
    FloatingPointEnvironment after; // right after the return, before any other instruction
    int exceptionsRaised;           // those that a debugger or a vectored handler would have seen
};

// Calls an stdcall function. `misalignment` is 0, 4, 8 or 12: what is missing to a multiple of 16 of the stack
// pointer at the call instruction. All eight x87 registers hold a number that the tags may declare valid.
// Returns in the program's own environment whatever the callee did, also to the stack pointer. Raised
// floating-point exceptions are counted, masked and resumed; all others end the program.
CallOutcome CallForeign(const void* function, std::span<const std::uint32_t> slots, unsigned misalignment,
                        const FloatingPointEnvironment& before);

// Exceptions raised so far in this program, inside foreign calls or not.
int ExceptionsRaised();

} // namespace z3d::test
