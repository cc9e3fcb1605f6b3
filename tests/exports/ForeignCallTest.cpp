// The checks that the other tests rest on can fail: functions that misbehave are found out.
#include "exports/ForeignCallMachine.h"

#include "exports/ForeignHost.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d::test;

volatile double zero = 0;
volatile float sink = 0;

std::uint32_t __stdcall Add(std::uint32_t a, std::uint32_t b) { return a + 2 * b; }

void __stdcall RaiseSseFlags() { sink = 1.0f / static_cast<float>(zero); }

// Leaves a number on the x87 stack, another rounding and the inexact flag.
void __stdcall DisturbX87() {
    static const std::uint16_t control = 0x0F7F;
    asm volatile("fldcw %0\n\tfldpi\n\tfrndint" : : "m"(control));
}

void __stdcall DivideByZeroOnX87() {
    asm volatile("fld1\n\tfdivl %0\n\tfwait\n\tfstp %%st(0)" : : "m"(zero));
}

TEST(ForeignCall, PassesSlotsInOrderAndReturnsTheResult) {
    const CallOutcome outcome = CallForeign(CodeOf(&Add), SlotsOf(3, 5), 0, {});

    EXPECT_EQ(static_cast<std::uint32_t>(outcome.result), 13u);
    EXPECT_EQ(outcome.bytesPopped, BytesToPop(2));
    EXPECT_TRUE(outcome.keptRegisters);
    EXPECT_EQ(outcome.exceptionsRaised, 0);
    EXPECT_EQ(outcome.after, FloatingPointEnvironment{});
}

TEST(ForeignCall, SurvivesAndReportsAWrongNumberOfSlots) {
    EXPECT_EQ(CallForeign(CodeOf(&Add), SlotsOf(1, 2, 3), 0, {}).bytesPopped, BytesToPop(2));
}

TEST(ForeignCall, MisalignsTheStack) {
    for (const unsigned misalignment : Misalignments()) {
        for (const std::size_t count : {0u, 1u, 2u, 3u, 15u}) {
            const std::vector<Slot> slots(count);
            CallForeign(CodeOf(&Z3dNoteStack), slots, misalignment, {});

            EXPECT_EQ((Z3dStackAtEntry + sizeof(Slot) + misalignment) % 16, 0u)
                << count << " slots, " << misalignment;
        }
    }
}

TEST(ForeignCall, DeliversEveryConditionToTheCallee) {
    for (const HostCondition& condition : AllConditions()) {
        const FloatingPointEnvironment& wanted = condition.floatingPoint;
        const CallOutcome outcome = CallForeign(CodeOf(&Z3dNoteStack), {}, condition.misalignment, wanted);

        ASSERT_EQ(outcome.after.x87Control & 0x1F3F, wanted.x87Control & 0x1F3F) << Describe(condition);
        ASSERT_EQ(outcome.after.x87Status & 0x7F3F, wanted.x87Status) << Describe(condition);
        ASSERT_EQ(outcome.after.x87Tags, wanted.x87Tags) << Describe(condition);
        ASSERT_EQ(outcome.after.mxcsr, wanted.mxcsr) << Describe(condition);
    }
}

TEST(ForeignCall, SeesSseFlags) {
    const CallOutcome outcome = CallForeign(CodeOf(&RaiseSseFlags), {}, 0, {});

    EXPECT_EQ(outcome.after.mxcsr, 0x1F84u);
    EXPECT_EQ(outcome.exceptionsRaised, 0);
}

TEST(ForeignCall, SeesX87ControlFlagsAndTags) {
    const CallOutcome outcome = CallForeign(CodeOf(&DisturbX87), {}, 0, {});

    EXPECT_EQ(outcome.after.x87Control, 0x0F7F);
    EXPECT_EQ(outcome.after.x87Status & 0x3820, 0x3820) << "the stack's top is register 7, inexact is set";
    EXPECT_EQ(outcome.after.x87Tags, 0x3FFF);
}

TEST(ForeignCall, CountsAnUnmaskedSseException) {
    const CallOutcome outcome = CallForeign(CodeOf(&RaiseSseFlags), {}, 0, {0x037F, 0, 0xFFFF, 0x0000});

    EXPECT_EQ(outcome.exceptionsRaised, 1);
}

TEST(ForeignCall, CountsAnUnmaskedX87Exception) {
    const CallOutcome outcome = CallForeign(CodeOf(&DivideByZeroOnX87), {}, 0, {0x1372, 0, 0xFFFF, 0x1F80});

    EXPECT_EQ(outcome.exceptionsRaised, 1);
}

// A callee that waits for a pending exception gets it.
TEST(ForeignCall, PendingExceptionsFireAtTheFirstWait) {
    const CallOutcome outcome = CallForeign(CodeOf(&DisturbX87), {}, 0, {0x1372, 0x0004, 0xFFFF, 0x1F80});

    EXPECT_EQ(outcome.exceptionsRaised, 1);
}

} // namespace
