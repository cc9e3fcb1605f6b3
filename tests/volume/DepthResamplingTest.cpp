#include "volume/DepthResampling.h"

#include "reference/PlainPipeline.h"
#include "support/RandomSource.h"
#include "support/RecordingHost.h"
#include "support/Refusals.h"
#include "support/Stacks.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace z3d;
using namespace z3d::test;
using frame::OwnedVolume;
using platform::Resource;

constexpr primitives::ValueRange kAnyBounds = {FLT_MAX, -FLT_MAX};
primitives::ValueRange lastRange; // of the last result

OwnedVolume Resampled(const reference::Volume& stack, int newDepth, const primitives::ValueRange& bounds) {
    const OwnedVolume source = ToVolume(stack);
    RecordingHost host;
    return volume::ResampleDepth(*source, newDepth, bounds, lastRange, host.Get());
}

TEST(DepthResampling, HalvingTakesTheMeanOfPairs) {
    const OwnedVolume result = Resampled(FloatStack(1, 1, 4, {1, 2, 10, 30}), 2, kAnyBounds);

    EXPECT_TRUE(HasSamples(result.get(), FloatStack(1, 1, 2, {1.5, 20})));
}

// Positions -0.25, 0.25, 0.75 and 1.25; the last has just one neighbour.
TEST(DepthResampling, DoublingExtrapolatesTheFirstSlice) {
    const OwnedVolume result = Resampled(FloatStack(1, 1, 2, {10, 20}), 4, kAnyBounds);

    EXPECT_TRUE(HasSamples(result.get(), FloatStack(1, 1, 4, {7.5, 12.5, 17.5, 20})));
}

TEST(DepthResampling, TheBoundsLimitTheExtrapolation) {
    const OwnedVolume result = Resampled(FloatStack(1, 1, 2, {10, 20}), 4, {17, 10});

    EXPECT_TRUE(HasSamples(result.get(), FloatStack(1, 1, 4, {10, 12.5, 17, 17})));
}

// 127 and 130: 126.25, 127.75, 129.25 and 130.
TEST(DepthResampling, BytesAreTruncated) {
    const OwnedVolume result = Resampled(ByteStack(1, 1, 2, {127, 130}), 4, kAnyBounds);

    EXPECT_TRUE(HasSamples(result.get(), ByteStack(1, 1, 4, {126, 127, 129, 130})));
}

TEST(DepthResampling, MeasuresItsResultAlone) {
    lastRange = {1000, -1000};
    Resampled(FloatStack(2, 1, 4, {1, 9, 2, 8, 10, 7, 30, 6}), 2, kAnyBounds);
    EXPECT_EQ(lastRange.max, 20);
    EXPECT_EQ(lastRange.min, 1.5f);

    Resampled(ByteStack(1, 1, 2, {127, 130}), 4, kAnyBounds);
    EXPECT_EQ(lastRange.max, 130);
    EXPECT_EQ(lastRange.min, 126);
}

TEST(DepthResampling, OneSliceIsRepeated) {
    const OwnedVolume result = Resampled(ByteStack(2, 1, 1, {7, 9}), 3, kAnyBounds);

    EXPECT_TRUE(HasSamples(result.get(), ByteStack(2, 1, 3, {7, 9, 7, 9, 7, 9})));
}

TEST(DepthResampling, AnyDepthCanBecomeOne) {
    // Position 1: exactly the second of three slices.
    const OwnedVolume result = Resampled(FloatStack(1, 1, 3, {1, 5, 100}), 1, kAnyBounds);

    EXPECT_TRUE(HasSamples(result.get(), FloatStack(1, 1, 1, {5})));
}

TEST(DepthResampling, ReportsAStartAndEachSlice) {
    const OwnedVolume source = ToVolume(ByteStack(1, 1, 2, {1, 2}));
    RecordingHost host;

    const OwnedVolume result = volume::ResampleDepth(*source, 4, kAnyBounds, lastRange, host.Get());

    EXPECT_TRUE(result);
    EXPECT_EQ(host.Events(), (Transcript{Start(), Percent(25), Percent(50), Percent(75), Percent(100)}));
}

// At each call: how many slices there are of the source and of the result together.
TEST(DepthResampling, FreesSourceSlicesAsSoonAsTheyAreNotNeeded) {
    const OwnedVolume source = ToVolume(ByteStack(1, 1, 8, {0, 1, 2, 3, 4, 5, 6, 7}));
    const std::int64_t before = Outstanding(Resource::Block) - 8;
    RecordingHost host;
    std::vector<std::int64_t> blocks;
    host.atEachEvent = [&] { blocks.push_back(Outstanding(Resource::Block) - before); };

    const OwnedVolume result = volume::ResampleDepth(*source, 4, kAnyBounds, lastRange, host.Get());

    // Slice z needs 2 z and 2 z + 1: the ones below 2 z are gone by then.
    EXPECT_EQ(blocks, (std::vector<std::int64_t>{8, 8 + 1, 6 + 2, 4 + 3, 2 + 4}));
    EXPECT_EQ(source->slices[5], nullptr);
    EXPECT_NE(source->slices[6], nullptr);
}

TEST(DepthResampling, CanBeCancelledAtEveryCall) {
    for (int call = 0; call < 4; ++call) {
        const std::int64_t before = OutstandingInTotal();
        {
            const OwnedVolume source = ToVolume(ByteStack(1, 1, 2, {1, 2}));
            RecordingHost host(call);
            EXPECT_EQ(volume::ResampleDepth(*source, 3, kAnyBounds, lastRange, host.Get()), nullptr);
            EXPECT_EQ(host.Calls(), call + 1);
        }
        EXPECT_EQ(OutstandingInTotal(), before) << "call " << call;
    }
}

TEST(DepthResampling, GivesNullWithoutAWarningWhenAnythingIsRefused) {
    ForEveryRefusal([](bool refused) {
        OwnedVolume source(frame::GlobalAlloc3D(3, 2, 3, 4));
        if (!source) return;
        RecordingHost host;
        const OwnedVolume result = volume::ResampleDepth(*source, 4, kAnyBounds, lastRange, host.Get());
        EXPECT_EQ(result == nullptr, refused);
        for (const HostEvent& event : host.Events())
            EXPECT_EQ(event.warning, "");
    });
}

TEST(DepthResampling, RefusesWhatItCannotRead) {
    RecordingHost host;
    const auto resample = [&](const OwnedVolume& source, int depth) {
        return volume::ResampleDepth(*source, depth, kAnyBounds, lastRange, host.Get());
    };
    const OwnedVolume missing = ToVolume(ByteStack(2, 2, 2, std::vector<std::uint8_t>(8)));
    frame::FreeSlice(missing.get(), 1);
    const OwnedVolume mixed = ToVolume(ByteStack(2, 2, 2, std::vector<std::uint8_t>(8)));
    mixed->slices[1]->bytesPerPixel = 4;
    const OwnedVolume smaller = ToVolume(ByteStack(2, 2, 2, std::vector<std::uint8_t>(8)));
    smaller->slices[0]->height = 1;
    const OwnedVolume colour(frame::GlobalAlloc3D(2, 2, 2, 3));
    const OwnedVolume empty(frame::GlobalAlloc3D(2, 2, 0, 1));
    const OwnedVolume good(frame::GlobalAlloc3D(2, 2, 2, 1));

    EXPECT_EQ(resample(missing, 3), nullptr);
    EXPECT_EQ(resample(mixed, 3), nullptr);
    EXPECT_EQ(resample(smaller, 3), nullptr);
    EXPECT_EQ(resample(colour, 3), nullptr);
    EXPECT_EQ(resample(empty, 3), nullptr);
    EXPECT_EQ(resample(good, -1), nullptr);
    EXPECT_EQ(resample(good, 65536), nullptr);
    EXPECT_EQ(host.Events(), Transcript{});
}

TEST(DepthResampling, MakesAnEmptyStackOfNoSlices) {
    RecordingHost host;
    const OwnedVolume source(frame::GlobalAlloc3D(2, 2, 2, 1));

    const OwnedVolume result = volume::ResampleDepth(*source, 0, kAnyBounds, lastRange, host.Get());

    ASSERT_TRUE(result);
    EXPECT_EQ(result->depth, 0);
    EXPECT_EQ(host.Events(), Transcript{Start()});
}

TEST(DepthResampling, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        RandomSource random(seed);
        const int width = random.Between(1, 20);
        const int depth = random.Between(1, 24);
        const int newDepth = random.Between(1, 40);
        std::vector<float> samples(static_cast<std::size_t>(width * depth));
        for (float& sample : samples)
            sample = random.Chance(40) ? std::numeric_limits<float>::quiet_NaN()
                                       : static_cast<float>(random.Within(-10, 300));
        const reference::Volume floats = FloatStack(width, 1, depth, samples);
        reference::Volume bytes = {2 * width, 2, depth, 1, floats.voxels};

        for (const reference::Volume& stack : {floats, bytes}) {
            reference::Range bounds;
            reference::Scan(stack, bounds);
            const OwnedVolume result = Resampled(stack, newDepth, {bounds.max, bounds.min});
            ASSERT_TRUE(HasSamples(result.get(), reference::ResampleDepth(stack, newDepth, bounds)))
                << "seed " << seed << ", " << depth << " to " << newDepth;
        }
    }
}

} // namespace
