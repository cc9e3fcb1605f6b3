// A host in a given condition, which calls exports with raw slots and expects to find itself unchanged.
#pragma once

#include "exports/ForeignCall.h"

#include <bit>
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

    // Calls an export and gives the low 32 bits of its result. Fails the test when the export is missing, leaves the
    // stack unbalanced, changes a register or the floating-point environment, or raises an exception.
    template <class... Arguments>
    std::uint32_t Call(const char* name, Arguments... arguments) {
        return static_cast<std::uint32_t>(CallWithSlots(name, SlotsOf(arguments...)));
    }
    // Gives the register of the result.
    Slot CallWithSlots(const char* name, const std::vector<Slot>& slots);

    // The same with a pointer as the result.
    template <class Result, class... Arguments>
    Result* CallForPointer(const char* name, Arguments... arguments) {
        return std::bit_cast<Result*>(CallWithSlots(name, SlotsOf(arguments...)));
    }

private:
    HostCondition condition_;
    FloatingPointEnvironment expected_; // what the processor reports of the condition
};

} // namespace z3d::test
