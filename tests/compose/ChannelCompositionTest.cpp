#include "compose/ChannelComposition.h"

#include "support/RecordingHost.h"
#include "support/Refusals.h"
#include "support/Stacks.h"

#include <gtest/gtest.h>

#include <bit>

namespace {

using namespace z3d;
using namespace z3d::test;
using compose::ChannelVolumes;
using frame::OwnedVolume;
using platform::Resource;
using primitives::ValueRange;

constexpr ValueRange kFullRange = {255, 0};

OwnedVolume Composed(const ChannelVolumes& channels, const ValueRange& range, ValueRange& display) {
    RecordingHost host;
    return compose::ComposeVolumes(channels, range, display, host.Get());
}

TEST(ChannelComposition, PutsEveryChannelInItsPlace) {
    const OwnedVolume red = ToVolume(ByteStack(2, 1, 2, {1, 2, 3, 4}));
    const OwnedVolume green = ToVolume(ByteStack(2, 1, 2, {11, 12, 13, 14}));
    const OwnedVolume blue = ToVolume(ByteStack(2, 1, 2, {21, 22, 23, 24}));
    ValueRange display;

    const OwnedVolume result = Composed({red.get(), green.get(), blue.get()}, kFullRange, display);

    EXPECT_TRUE(HasSamples(result.get(), RgbStack(2, 1, 2, {1, 11, 21, 2, 12, 22, 3, 13, 23, 4, 14, 24})));
    // Grey (1365 * 33) >> 12 = 10 to (1365 * 42) >> 12 = 13, which becomes 14.
    EXPECT_EQ(display.min, 30);
    EXPECT_EQ(display.max, 42);
}

TEST(ChannelComposition, GivesBlackTheRangeFromZeroToThree) {
    const OwnedVolume red = ToVolume(ByteStack(2, 2, 1, {0, 0, 0, 0}));
    ValueRange display = {-5, 9};

    const OwnedVolume result = Composed({red.get(), nullptr, nullptr}, kFullRange, display);

    EXPECT_TRUE(HasSamples(result.get(), RgbStack(2, 2, 1, std::vector<std::uint8_t>(12))));
    EXPECT_EQ(display.min, 0);
    EXPECT_EQ(display.max, 3);
}

TEST(ChannelComposition, GivesRedWhereJustTheRedFloatsAreAtTheTop) {
    const OwnedVolume red = ToVolume(FloatStack(2, 1, 1, {8, 8}));
    ValueRange display;

    const OwnedVolume result = Composed({red.get(), nullptr, nullptr}, {8, 0}, display);

    EXPECT_TRUE(HasSamples(result.get(), RgbStack(2, 1, 1, {255, 0, 0, 255, 0, 0})));
}

// The rows of the wider channel are read with the common width, so they run on.
TEST(ChannelComposition, TakesTheSmallestSizeOfAllChannels) {
    const OwnedVolume red = ToVolume(ByteStack(2, 2, 2, {1, 2, 3, 4, 5, 6, 7, 8}));
    const OwnedVolume blue = ToVolume(ByteStack(3, 2, 1, {21, 22, 23, 24, 25, 26}));
    ValueRange display;

    const OwnedVolume result = Composed({red.get(), nullptr, blue.get()}, kFullRange, display);

    EXPECT_TRUE(HasSamples(result.get(), RgbStack(2, 2, 1, {1, 0, 21, 2, 0, 22, 3, 0, 23, 4, 0, 24})));
    EXPECT_EQ(red->slices[0], nullptr);
    EXPECT_NE(red->slices[1], nullptr);
}

TEST(ChannelComposition, ReadsFloatsAsBytesBesideAChannelOfBytes) {
    const OwnedVolume red = ToVolume(ByteStack(2, 1, 1, {1, 2}));
    const OwnedVolume green = ToVolume(FloatStack(2, 1, 1, {std::bit_cast<float>(0x00000605), 0}));
    ValueRange display;

    const OwnedVolume result = Composed({red.get(), green.get(), nullptr}, kFullRange, display);

    EXPECT_TRUE(HasSamples(result.get(), RgbStack(2, 1, 1, {1, 5, 0, 2, 6, 0})));
}

TEST(ChannelComposition, TakesOneVolumeForSeveralChannels) {
    for (const bool greenIsRed : {true, false}) {
        const OwnedVolume one = ToVolume(ByteStack(1, 1, 2, {5, 6}));
        const OwnedVolume other = ToVolume(ByteStack(1, 1, 2, {7, 8}));
        Volume3D* green = greenIsRed ? one.get() : other.get();
        ValueRange display;

        const OwnedVolume result = Composed({one.get(), green, other.get()}, kFullRange, display);

        const std::uint8_t g = greenIsRed ? 5 : 7;
        const auto g2 = static_cast<std::uint8_t>(g + 1);
        EXPECT_TRUE(HasSamples(result.get(), RgbStack(1, 1, 2, {5, g, 7, 6, g2, 8})));
    }
}

TEST(ChannelComposition, ReportsEachSliceBeforeItIsMadeAndNoStart) {
    const OwnedVolume red = ToVolume(ByteStack(1, 1, 4, {5, 6, 7, 8}));
    RecordingHost host;
    ValueRange display;

    const OwnedVolume result =
        compose::ComposeVolumes({red.get(), nullptr, nullptr}, kFullRange, display, host.Get());

    EXPECT_TRUE(result);
    EXPECT_EQ(host.Events(), (Transcript{Percent(25), Percent(50), Percent(75), Percent(100)}));
}

// Slices alive at each call: three per source slice that is left, one per slice that is made.
TEST(ChannelComposition, ConsumesTheChannelsSliceBySlice) {
    const OwnedVolume red = ToVolume(ByteStack(1, 1, 3, {5, 6, 7}));
    const OwnedVolume green = ToVolume(ByteStack(1, 1, 3, {5, 6, 7}));
    const OwnedVolume blue = ToVolume(ByteStack(1, 1, 3, {5, 6, 7}));
    const std::int64_t before = Outstanding(Resource::Block) - 9;
    RecordingHost host;
    std::vector<std::int64_t> blocks;
    std::vector<std::int64_t> locks;
    host.atEachEvent = [&] {
        blocks.push_back(Outstanding(Resource::Block) - before);
        locks.push_back(Outstanding(Resource::BlockLock));
    };
    ValueRange display;
    RefuseNothing();

    const OwnedVolume result =
        compose::ComposeVolumes({red.get(), green.get(), blue.get()}, kFullRange, display, host.Get());

    EXPECT_EQ(blocks, (std::vector<std::int64_t>{9, 7, 5}));
    EXPECT_EQ(locks, (std::vector<std::int64_t>{0, 0, 0}));
    EXPECT_EQ(PeakOutstanding(Resource::Block) - before, 10);
    EXPECT_EQ(Outstanding(Resource::Block) - before, 3);
}

TEST(ChannelComposition, CanBeCancelledAtEveryCall) {
    for (int call = 0; call < 3; ++call) {
        const std::int64_t before = OutstandingInTotal();
        {
            const OwnedVolume red = ToVolume(ByteStack(1, 1, 3, {5, 6, 7}));
            RecordingHost host(call);
            ValueRange display;
            EXPECT_EQ(compose::ComposeVolumes({red.get(), nullptr, nullptr}, kFullRange, display, host.Get()),
                      nullptr);
            EXPECT_EQ(host.Calls(), call + 1);
            for (int z = 0; z < 3; ++z)
                EXPECT_EQ(red->slices[z] == nullptr, z < call);
        }
        EXPECT_EQ(OutstandingInTotal(), before);
    }
}

TEST(ChannelComposition, GivesNullWithoutAWarningWhenAnythingIsRefused) {
    ForEveryRefusal([](bool refused) {
        const OwnedVolume red(frame::GlobalAlloc3D(3, 2, 2, 1));
        const OwnedVolume green(frame::GlobalAlloc3D(3, 2, 2, 1));
        if (!red || !green) return;
        RecordingHost host;
        ValueRange display;
        const OwnedVolume result =
            compose::ComposeVolumes({red.get(), green.get(), red.get()}, kFullRange, display, host.Get());
        EXPECT_EQ(result == nullptr, refused);
        for (const HostEvent& event : host.Events())
            EXPECT_EQ(event.warning, "");
    });
}

TEST(ChannelComposition, GivesNullForOtherPixels) {
    for (const std::uint32_t bytesPerPixel : {2u, 3u, 5u}) {
        const OwnedVolume red(frame::GlobalAlloc3D(2, 2, 2, bytesPerPixel));
        ValueRange display;
        EXPECT_EQ(Composed({red.get(), nullptr, nullptr}, kFullRange, display), nullptr);
    }
}

TEST(ChannelComposition, GivesNullWithoutAChannel) {
    ValueRange display;

    EXPECT_EQ(Composed({nullptr, nullptr, nullptr}, kFullRange, display), nullptr);
    EXPECT_EQ(compose::ComposeSlice({nullptr, nullptr, nullptr}, kFullRange, display), nullptr);
}

TEST(ChannelComposition, MakesAnEmptyVolumeOfNoSlices) {
    const OwnedVolume red(frame::GlobalAlloc3D(2, 2, 0, 1));
    ValueRange display = {1, 2};

    const OwnedVolume result = Composed({red.get(), nullptr, nullptr}, kFullRange, display);

    ASSERT_TRUE(result);
    EXPECT_EQ(result->depth, 0);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(display.max), 0xFF7FFFFFu);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(display.min), 0x7F7FFFFFu);
}

TEST(ChannelComposition, TakesAMissingSliceAsAMissingChannel) {
    const OwnedVolume red = ToVolume(ByteStack(1, 1, 1, {5}));
    const OwnedVolume green(frame::GlobalAlloc3D(1, 1, 1, 0));
    ValueRange display;

    const OwnedVolume result = Composed({red.get(), green.get(), nullptr}, kFullRange, display);

    EXPECT_TRUE(HasSamples(result.get(), RgbStack(1, 1, 1, {5, 0, 0})));
}

} // namespace
