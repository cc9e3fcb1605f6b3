#include "exports/ForeignHost.h"

#include "exports/Library.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

namespace z3d::test {
namespace {

void Z3D_CALL DoNothing() {}

struct X87State {
    std::uint16_t control;
    std::uint16_t status;
    std::uint16_t tags;
};

constexpr X87State kX87States[] = {
    {0x037F, 0x0000, 0xFFFF}, // what the processor starts with
    {0x027F, 0x0000, 0xFFFF}, // 53-bit mantissa: the C run-time library's default
    {0x007F, 0x0000, 0xFFFF}, // 24-bit mantissa: a graphics library's favourite
    {0x1372, 0x0000, 0xFFFF}, // invalid operation, division by zero and overflow unmasked
    {0x0340, 0x0000, 0xFFFF}, // all unmasked
    {0x077F, 0x0000, 0xFFFF}, // round down
    {0x0B7F, 0x0000, 0xFFFF}, // round up
    {0x0C7F, 0x0000, 0xFFFF}, // truncate, 24-bit mantissa
    {0x037F, 0x003F, 0xFFFF}, // every flag raised
    {0x037F, 0x4720, 0xFFFF}, // condition codes and the inexact flag
    {0x1372, 0x0004,
     0xFFFF}, // division by zero pending and unmasked: the next x87 instruction that waits raises it
    {0x027F, 0x3000, 0x0FFF}, // two numbers on the register stack
    {0x037F, 0x0000, 0x0000}, // all registers taken, as MMX code leaves them that forgets its EMMS
};

constexpr std::uint32_t kSseStates[] = {
    0x1F80, // what the processor starts with
    0x9FC0, // flush to zero, denormals are zero
    0x3F80, // round down
    0x5F80, // round up
    0x7F80, // truncate
    0x0000, // all unmasked
    0x1FBF, // every flag raised
    0x003F, // every flag raised, all unmasked
    0xFFC0, // everything at once but flags and unmasked exceptions
};

std::vector<HostCondition> MakeConditions() {
    std::vector<HostCondition> conditions;
    for (const unsigned misalignment : Misalignments()) {
        for (const X87State& x87 : kX87States) {
            for (const std::uint32_t mxcsr : kSseStates)
                conditions.push_back({misalignment, {x87.control, x87.status, x87.tags, mxcsr}});
        }
    }
    return conditions;
}

std::string Describe(const FloatingPointEnvironment& environment) {
    std::ostringstream text;
    text << std::hex << std::setfill('0') << "x87 control " << std::setw(4) << environment.x87Control
         << ", status " << std::setw(4) << environment.x87Status << ", tags " << std::setw(4)
         << environment.x87Tags << ", mxcsr " << std::setw(4) << environment.mxcsr;
    return text.str();
}

} // namespace

std::string Describe(const HostCondition& condition) {
    return Describe(condition.floatingPoint) + ", stack off by " + std::to_string(condition.misalignment);
}

const std::vector<HostCondition>& AllConditions() {
    static const std::vector<HostCondition> conditions = MakeConditions();
    return conditions;
}

// A call of nothing tells how the processor reads the condition back: it derives some status bits itself.
ForeignHost::ForeignHost(const HostCondition& condition)
    : condition_(condition),
      expected_(CallForeign(reinterpret_cast<const void*>(&DoNothing), {}, condition.misalignment,
                            condition.floatingPoint)
                    .after) {}

Slot ForeignHost::CallWithSlots(const char* name, const std::vector<Slot>& slots) {
    const void* function = AddressOf(name);
    if (function == nullptr) {
        ADD_FAILURE() << "no export " << name;
        return 0;
    }
    const CallOutcome outcome =
        CallForeign(function, slots, condition_.misalignment, condition_.floatingPoint);

    EXPECT_EQ(outcome.bytesPopped, BytesToPop(slots.size())) << name;
    EXPECT_TRUE(outcome.keptRegisters) << name;
    EXPECT_EQ(outcome.exceptionsRaised, 0) << name;
    EXPECT_TRUE(outcome.after == expected_)
        << name << " called with " << Describe(expected_) << ", left " << Describe(outcome.after);
    return outcome.result;
}

} // namespace z3d::test
