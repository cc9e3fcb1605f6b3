// A host in a given condition, which calls exports with raw slots and expects to find itself unchanged.
#pragma once

#include "exports/ForeignCall.h"

#include <bit>
#include <concepts>
#include <cstdint>
#include <string>
#include <vector>

namespace z3d::test {

struct HostCondition {
    unsigned misalignment = 0;
    FloatingPointEnvironment floatingPoint;
};

std::string Describe(const HostCondition& condition);

// The conditions that tests run through: every misalignment with every x87 state and every SSE state.
const std::vector<HostCondition>& AllConditions();

// A default host, for comparison.
inline constexpr HostCondition kPlainHost = {};

class ForeignHost {
public:
    explicit ForeignHost(const HostCondition& condition);

    // Calls an export and gives its EAX. Fails the test when the export is missing, leaves the stack unbalanced,
    // changes a register or the floating-point environment, or raises an exception.
    template <class... Arguments>
    std::uint32_t Call(const char* name, Arguments... arguments) {
        std::vector<std::uint32_t> slots;
        (Push(slots, arguments), ...);
        return CallWithSlots(name, slots);
    }
    std::uint32_t CallWithSlots(const char* name, const std::vector<std::uint32_t>& slots);

    // The same with a pointer as the result.
    template <class Result, class... Arguments>
    Result* CallForPointer(const char* name, Arguments... arguments) {
        return std::bit_cast<Result*>(Call(name, arguments...));
    }

private:
    template <std::integral Integer>
    static void Push(std::vector<std::uint32_t>& slots, Integer value) {
        slots.push_back(static_cast<std::uint32_t>(value));
    }
    static void Push(std::vector<std::uint32_t>& slots, std::nullptr_t) { slots.push_back(0); }
    static void Push(std::vector<std::uint32_t>& slots, const void* pointer) {
        slots.push_back(std::bit_cast<std::uint32_t>(pointer));
    }
    static void Push(std::vector<std::uint32_t>& slots, float value) {
        slots.push_back(std::bit_cast<std::uint32_t>(value));
    }
    static void Push(std::vector<std::uint32_t>& slots, double value) {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        slots.push_back(static_cast<std::uint32_t>(bits));
        slots.push_back(static_cast<std::uint32_t>(bits >> 32));
    }

    HostCondition condition_;
    FloatingPointEnvironment expected_; // what the processor reports of the condition
};

} // namespace z3d::test
