// The host's floating-point environment while its own code runs inside a call.
#include "exports/ForeignHost.h"
#include "exports/ImageCall.h"
#include "exports/Library.h"

#include "support/MessageBoxes.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

using namespace z3d::test;

void Z3D_CALL DoNothing() {}

const std::vector<float> kSamples = {0.1f, 0.2f, 0.3f, 7.7f};

TEST(PipelineHostState, IsTheHostsInEveryCallOfItsCallback) {
    const TemporaryFile file(kSamples);
    for (const HostCondition& condition : AllConditions()) {
        const auto& [misalignment, environment] = condition;
        const FloatingPointEnvironment expected =
            CallForeign(CodeOf(&DoNothing), {}, misalignment, environment).after;
        CallbackLog log;
        ImageCall call = {.red = file.Name(), .width = 2, .depth = 2, .is8bit = 0, .log = &log};
        const CallOutcome outcome =
            CallForeign(AddressOf("GetRGBImage"), call.Slots(), misalignment, environment);
        TheLibrary().Free3DData(std::bit_cast<Volume3D*>(outcome.result));

        ASSERT_EQ(log.environments.size(), 5u);
        for (const FloatingPointEnvironment& found : log.environments)
            ASSERT_EQ(found, expected) << Describe(condition);
        ASSERT_EQ(outcome.after, expected) << Describe(condition);
        ASSERT_EQ(outcome.exceptionsRaised, 0) << Describe(condition);
    }
}

// Truncation, 24-bit mantissa and flush to zero from the second call on.
void ChangeEnvironment(CallbackLog& log) {
    if (log.calls.size() != 2) return;
    const std::uint16_t control = 0x0C7F;
    const std::uint32_t mxcsr = 0xFF80;
    asm volatile("fldcw %0\n\tldmxcsr %1" : : "m"(control), "m"(mxcsr));
}

TEST(PipelineHostState, KeepsWhatTheCallbackChangesAndNoResultDependsOnIt) {
    const TemporaryFile file(kSamples);
    ImageCall plain = {.red = file.Name(), .width = 2, .depth = 2, .is8bit = 0};
    Volume3D* expected = plain.Run();
    CallbackLog log;
    log.atEachCall = ChangeEnvironment;
    ImageCall call = plain;
    call.log = &log;

    const CallOutcome outcome = CallForeign(AddressOf("GetRGBImage"), call.Slots(), 0, {});

    const FloatingPointEnvironment changed = {0x0C7F, 0, 0xFFFF, 0xFF80};
    EXPECT_EQ(log.environments[1], FloatingPointEnvironment{});
    EXPECT_EQ(log.environments[2], changed);
    EXPECT_EQ(log.environments[4], changed);
    EXPECT_EQ(outcome.after, changed);
    auto* volume = std::bit_cast<Volume3D*>(outcome.result);
    EXPECT_EQ(BytesOf(volume), BytesOf(expected));
    EXPECT_EQ(call.outMax, plain.outMax);
    TheLibrary().Free3DData(volume);
    TheLibrary().Free3DData(expected);
}

FloatingPointEnvironment environmentAtBox;

LRESULT CALLBACK NoteEnvironment(int code, WPARAM wide, LPARAM also) {
    if (code == HCBT_ACTIVATE) environmentAtBox = CurrentEnvironment();
    return CallNextHookEx(nullptr, code, wide, also);
}

// Control bits only: the system's own window code may raise flags.
TEST(PipelineHostState, IsTheHostsWhileAMessageBoxIsOpen) {
    const FloatingPointEnvironment host = {0x0E72, 0, 0xFFFF, 0xE000 | 0x1D00};
    const HHOOK hook = SetWindowsHookExA(WH_CBT, NoteEnvironment, nullptr, GetCurrentThreadId());
    ImageCall call = {.red = "no such file"};
    CallOutcome outcome;

    const ShownBox box = BoxShownBy(
        [&] { outcome = CallForeign(AddressOf("GetRGBImage"), call.Slots(), Misalignments().back(), host); });
    UnhookWindowsHookEx(hook);

    EXPECT_EQ(box.text, "Cannot open file");
    EXPECT_EQ(environmentAtBox.x87Control & 0x0F3F, host.x87Control & 0x0F3F);
    EXPECT_EQ(environmentAtBox.mxcsr & 0xFFC0, host.mxcsr & 0xFFC0);
    EXPECT_EQ(outcome.after.x87Control & 0x0F3F, host.x87Control & 0x0F3F);
    EXPECT_EQ(outcome.after.mxcsr & 0xFFC0, host.mxcsr & 0xFFC0);
}

} // namespace
