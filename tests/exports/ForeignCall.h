// Calls a function as a host in any condition may: raw argument slots, a stack that is aligned to 4 bytes only where
// that is allowed, any floating-point environment. Reports everything that such a host could notice afterwards.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace z3d::test {

// What a host can see of both floating-point units, except for the addresses of the last x87 instruction.
struct FloatingPointEnvironment {
    std::uint16_t x87Control = 0x037F; // all exceptions masked, 64-bit mantissa, round to nearest
    std::uint16_t x87Status = 0;       // bits 0 to 5: sticky flags; bits 11 to 13: top of the stack
    std::uint16_t x87Tags = 0xFFFF;    // two bits per register, 3 = empty
    std::uint32_t mxcsr = 0x1F80;      // all exceptions masked, round to nearest, no flag

    bool operator==(const FloatingPointEnvironment&) const = default;
};

// As wide as an address. A double takes two slots of 32 bits, or one of 64.
using Slot = std::uintptr_t;

// What a callee must not look at, above an argument that is narrower than its slot.
inline constexpr Slot kAboveArguments = sizeof(Slot) == 4 ? 0 : static_cast<Slot>(0xDEADBEEF'00000000);

template <std::integral Integer>
void Push(std::vector<Slot>& slots, Integer value) {
    slots.push_back(sizeof(Integer) > 4 ? static_cast<Slot>(value)
                                        : kAboveArguments | static_cast<std::uint32_t>(value));
}
inline void Push(std::vector<Slot>& slots, std::nullptr_t) { slots.push_back(0); }
inline void Push(std::vector<Slot>& slots, const void* pointer) {
    slots.push_back(std::bit_cast<Slot>(pointer));
}
inline void Push(std::vector<Slot>& slots, float value) { Push(slots, std::bit_cast<std::uint32_t>(value)); }
inline void Push(std::vector<Slot>& slots, double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    slots.push_back(static_cast<Slot>(bits));
    if (sizeof(Slot) == 4) slots.push_back(static_cast<Slot>(bits >> 32));
}

template <class... Arguments>
std::vector<Slot> SlotsOf(Arguments... arguments) {
    std::vector<Slot> slots;
    (Push(slots, arguments), ...);
    return slots;
}

// What is missing to a multiple of 16 of the stack pointer at a call: all that a host may have.
std::span<const unsigned> Misalignments();

// Bytes of the stack that a callee takes away with its arguments: all of stdcall's, none on x64.
std::size_t BytesToPop(std::size_t slotCount);

struct CallOutcome {
    Slot result;                    // the EAX or RAX register
    std::size_t bytesPopped;        // by the callee, beyond its return address
    bool keptRegisters;             // all that the convention has the callee keep came back as they were
    FloatingPointEnvironment after; // right after the return, before any other instruction
    int exceptionsRaised;           // those that a debugger or a vectored handler would have seen
};

// A function's address, as the call takes it.
template <class Function>
const void* CodeOf(Function* function) {
    return reinterpret_cast<const void*>(function);
}

// Calls a function by the platform's convention. `misalignment` is one of Misalignments(). All eight x87 registers
// hold a number that the tags may declare valid. Returns in the program's own environment whatever the callee did,
// also to the stack pointer. Raised floating-point exceptions are counted, masked and resumed; all others end the
// program.
CallOutcome CallForeign(const void* function, std::span<const Slot> slots, unsigned misalignment,
                        const FloatingPointEnvironment& before);

} // namespace z3d::test
