#include "frame/Host.h"

#include "support/RecordingHost.h"

#include <gtest/gtest.h>

#include <bit>

namespace {

using namespace z3d;
using namespace z3d::test;
using frame::Answer;

TEST(Host, HearsTheCodesAndValuesOfTheProtocol) {
    RecordingHost recorder;
    const frame::Host host = recorder.Get();

    EXPECT_EQ(host.Start(), Answer::GoOn);
    EXPECT_EQ(host.Progress(0, 2), Answer::GoOn);
    EXPECT_EQ(host.Progress(1, 2), Answer::GoOn);
    host.EndedWithoutResult();
    host.CannotRun();

    EXPECT_EQ(recorder.Events(), (Transcript{{101, 0, {}},
                                             {102, 0x42480000, {}},
                                             {102, 0x42C80000, {}},
                                             {0, 0x42C80000, {}},
                                             {200, 0x42C80000, {}}}));
}

// 100 / 3 and 200 / 3 rounded to a float once; the sum of two rounded thirds would be 66.66666.
TEST(Host, HearsPercentagesThatAreRoundedOnce) {
    RecordingHost recorder;
    const frame::Host host = recorder.Get();

    (void)host.Progress(0, 3);
    (void)host.Progress(1, 3);
    (void)host.Progress(6, 7);
    (void)host.Progress(32765, 32767);

    EXPECT_EQ(
        recorder.Events(),
        (Transcript{
            {102, 0x42055555, {}}, {102, 0x42855555, {}}, {102, 0x42C80000, {}}, {102, 0x42C7FE70, {}}}));
}

TEST(Host, CancelsByTheLow16BitsOfItsAnswer) {
    const auto answerTo = [](std::int32_t result) { return RecordingHost(0, result).Get().Start(); };

    EXPECT_EQ(answerTo(200), Answer::Cancel);
    EXPECT_EQ(answerTo(65536 + 200), Answer::Cancel);
    EXPECT_EQ(answerTo(static_cast<std::int32_t>(0xFFFF00C8)), Answer::Cancel);
    EXPECT_EQ(answerTo(200 << 16), Answer::GoOn);
    EXPECT_EQ(answerTo(0), Answer::GoOn);
    EXPECT_EQ(answerTo(1), Answer::GoOn);
    EXPECT_EQ(answerTo(-200), Answer::GoOn);
    EXPECT_EQ(answerTo(200 + 256), Answer::GoOn);
}

TEST(Host, CanCancelAtAStartAndAtProgress) {
    RecordingHost recorder(1);
    const frame::Host host = recorder.Get();

    EXPECT_EQ(host.Start(), Answer::GoOn);
    EXPECT_EQ(host.Progress(0, 1), Answer::Cancel);
}

TEST(Host, IsNeverCalledWithoutACallback) {
    RecordingHost recorder(0);
    const frame::Host host = recorder.WithoutCallback();

    EXPECT_EQ(host.Start(), Answer::GoOn);
    EXPECT_EQ(host.Progress(0, 1), Answer::GoOn);
    host.EndedWithoutResult();
    host.CannotRun();
    EXPECT_EQ(recorder.Events(), Transcript{});

    host.Warn("a warning");
    EXPECT_EQ(recorder.Events(), Transcript{Warning("a warning")});
}

} // namespace
