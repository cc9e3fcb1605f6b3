#include "compose/GreyConversion.h"

#include "reference/PlainPipeline.h"
#include "support/RandomSource.h"
#include "support/RecordingHost.h"
#include "support/Refusals.h"
#include "support/SpecialValues.h"
#include "support/Stacks.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;
using frame::OwnedVolume;
using platform::Resource;
using primitives::ValueRange;

OwnedVolume Converted(const reference::Volume& stack, const ValueRange& range, ValueRange& display) {
    const OwnedVolume source = ToVolume(stack);
    RecordingHost host;
    return compose::ConvertToGrey(source.get(), range, display, host.Get());
}

// 127.5 lies between 127 and 128: the even one.
TEST(GreyConversion, MapsTheRangeToBytes) {
    ValueRange display;

    const OwnedVolume result = Converted(FloatStack(3, 1, 1, {0, 0.5f, 1}), {1, 0}, display);

    EXPECT_TRUE(HasSamples(result.get(), ByteStack(3, 1, 1, {0, 128, 255})));
    EXPECT_EQ(display.max, 255);
    EXPECT_EQ(display.min, 0);
}

TEST(GreyConversion, SaturatesButReportsWhatLiesBeyond) {
    ValueRange display;

    const OwnedVolume result = Converted(FloatStack(1, 1, 3, {-1, 3, 1}), {2, 0}, display);

    EXPECT_TRUE(HasSamples(result.get(), ByteStack(1, 1, 3, {0, 255, 128})));
    EXPECT_EQ(display.max, 382.5f);
    EXPECT_EQ(display.min, -127.5f);
}

// Samples are converted 4096 at a time: neither what came before nor the first of a lot is forgotten.
TEST(GreyConversion, FindsTheExtremesOfALargeSliceWhereverTheyAre) {
    for (const std::size_t lowest : {0u, 4096u, 9999u}) {
        std::vector<float> samples(10000, 0.5f);
        samples[lowest] = 0;
        samples[samples.size() - 1 - lowest] = 1;
        ValueRange display;

        Converted(FloatStack(100, 100, 1, samples), {1, 0}, display);

        EXPECT_EQ(display.max, 255) << "lowest at " << lowest;
        EXPECT_EQ(display.min, 0) << "lowest at " << lowest;
    }
}

// 255 / (1 - 0.7) is 849.99994 in floats and 0.7 * -255 / (1 - 0.7) is -595: the range's own lower end comes out
// as -2^-14. Shifted first it would be 0.
TEST(GreyConversion, ScalesFirstAndInSinglePrecision) {
    ValueRange display;

    Converted(FloatStack(1, 1, 1, {0.7f}), {1.0f, 0.7f}, display);

    EXPECT_EQ(std::bit_cast<std::uint32_t>(display.min), 0xB8800000u);
}

std::uint8_t ByteOf(float value) {
    ValueRange display;
    const OwnedVolume result = Converted(FloatStack(1, 1, 1, {value}), {value, value}, display);
    return *frame::GlobalLock2D(result->slices[0])[0];
}

TEST(GreyConversion, ReportsTheOneValueOfAnEmptyRange) {
    ValueRange display;

    Converted(FloatStack(1, 1, 1, {3.7f}), {3.7f, 3.7f}, display);

    EXPECT_EQ(display.max, 3.7f);
    EXPECT_EQ(display.min, 3.7f);
}

TEST(GreyConversion, TruncatesTheOneValueOfAnEmptyRange) {
    EXPECT_EQ(ByteOf(3.7f), 3);
    EXPECT_EQ(ByteOf(0.0f), 0);
    EXPECT_EQ(ByteOf(255.0f), 255);
}

TEST(GreyConversion, KeepsTheLow8BitsOfTheOneValue) {
    EXPECT_EQ(ByteOf(256.0f + 7.5f), 7);
    EXPECT_EQ(ByteOf(-1.0f), 255);
    EXPECT_EQ(ByteOf(-3.7f), 253);
    EXPECT_EQ(ByteOf(16777215.0f), 255);
    EXPECT_EQ(ByteOf(-2147483648.0f), 0);
    EXPECT_EQ(ByteOf(2147483648.0f), 0);
    EXPECT_EQ(ByteOf(3e38f), 0);
    EXPECT_EQ(ByteOf(kInfinity), 0);
}

TEST(GreyConversion, TreatsZeroesOfEitherSignAsEqual) {
    ValueRange display;

    const OwnedVolume result = Converted(FloatStack(1, 1, 2, {0.0f, -0.0f}), {0.0f, -0.0f}, display);

    EXPECT_TRUE(HasSamples(result.get(), ByteStack(1, 1, 2, {0, 0})));
}

// A range that overflows scales by 255 / infinity = 0, which clears every value; the shift is not a number and
// is left out.
TEST(GreyConversion, GivesBlackForARangeThatOverflows) {
    ValueRange display;

    const OwnedVolume result =
        Converted(FloatStack(3, 1, 1, {3e38f, kNaN, -3e38f}), {3e38f, -3e38f}, display);

    EXPECT_TRUE(HasSamples(result.get(), ByteStack(3, 1, 1, {0, 0, 0})));
    EXPECT_EQ(std::bit_cast<std::uint32_t>(display.max), 0u);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(display.min), 0u);
}

// The largest value's scan keeps a NaN that it starts with; the smallest value's scan starts again after each.
TEST(GreyConversion, ScansValuesThatAreNotNumbersLiterally) {
    ValueRange display;

    Converted(FloatStack(4, 1, 1, {0, kNaN, 0.5f, 1}), {1, 0}, display);
    EXPECT_EQ(display.max, 255);
    EXPECT_EQ(display.min, 127.5f);

    Converted(FloatStack(2, 1, 1, {kNaN, 1}), {1, 0}, display);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(display.max), 0xFF7FFFFFu);
    EXPECT_EQ(display.min, 255);
}

TEST(GreyConversion, MovesSlicesOfBytesAsTheyAre) {
    const OwnedVolume source = ToVolume(ByteStack(2, 1, 2, {1, 2, 3, 4}));
    Image2D* first = source->slices[0];
    RecordingHost host;
    ValueRange display;

    const OwnedVolume result = compose::ConvertToGrey(source.get(), {3, 1}, display, host.Get());

    EXPECT_TRUE(HasSamples(result.get(), ByteStack(2, 1, 2, {1, 2, 3, 4})));
    EXPECT_EQ(result->slices[0], first);
    EXPECT_EQ(source->slices[0], nullptr);
    EXPECT_EQ(source->slices[1], nullptr);
}

TEST(GreyConversion, ReportsEachSliceBeforeItIsMadeAndNoStart) {
    const OwnedVolume source = ToVolume(FloatStack(1, 1, 2, {0, 1}));
    const std::int64_t before = Outstanding(Resource::Block) - 2;
    RecordingHost host;
    std::vector<std::int64_t> blocks;
    host.atEachEvent = [&] { blocks.push_back(Outstanding(Resource::Block) - before); };
    ValueRange display;
    RefuseNothing();

    const OwnedVolume result = compose::ConvertToGrey(source.get(), {1, 0}, display, host.Get());

    EXPECT_TRUE(result);
    EXPECT_EQ(host.Events(), (Transcript{Percent(50), Percent(100)}));
    EXPECT_EQ(blocks, (std::vector<std::int64_t>{2, 2}));
    EXPECT_EQ(PeakOutstanding(Resource::Block) - before, 3);
}

TEST(GreyConversion, CanBeCancelledAtEveryCall) {
    for (int call = 0; call < 3; ++call) {
        const std::int64_t before = OutstandingInTotal();
        {
            const OwnedVolume source = ToVolume(FloatStack(1, 1, 3, {0, 1, 2}));
            RecordingHost host(call);
            ValueRange display;
            EXPECT_EQ(compose::ConvertToGrey(source.get(), {2, 0}, display, host.Get()), nullptr);
            EXPECT_EQ(host.Calls(), call + 1);
        }
        EXPECT_EQ(OutstandingInTotal(), before);
    }
}

TEST(GreyConversion, CannotRunWithoutASource) {
    RecordingHost host;
    ValueRange display;

    EXPECT_EQ(compose::ConvertToGrey(nullptr, {1, 0}, display, host.Get()), nullptr);
    EXPECT_EQ(host.Events(), Transcript{CannotRun()});
    EXPECT_EQ(compose::ConvertToGrey(nullptr, {1, 0}, display, host.WithoutCallback()), nullptr);
}

// The result's handle and its slice table are the first two requests.
TEST(GreyConversion, GivesNullWhenAnythingIsRefused) {
    int couldNotRun = 0;
    ForEveryRefusal([&](bool refused) {
        const OwnedVolume source(frame::GlobalAlloc3D(3, 2, 2, 4));
        if (!source) return;
        RecordingHost host;
        ValueRange display;
        const OwnedVolume result = compose::ConvertToGrey(source.get(), {1, 0}, display, host.Get());
        EXPECT_EQ(result == nullptr, refused);
        if (host.Events().front() == CannotRun()) {
            ++couldNotRun;
            EXPECT_EQ(host.Events().size(), 1u);
        }
    });
    EXPECT_EQ(couldNotRun, 2);
}

TEST(GreyConversion, GivesNullForAMissingSlice) {
    const OwnedVolume source = ToVolume(FloatStack(1, 1, 2, {0, 1}));
    frame::FreeSlice(source.get(), 1);
    RecordingHost host;
    ValueRange display;

    EXPECT_EQ(compose::ConvertToGrey(source.get(), {1, 0}, display, host.Get()), nullptr);
}

std::vector<float> RandomSamples(RandomSource& random, int count) {
    constexpr float kSpecial[] = {kNaN, kInfinity, -kInfinity, 0.0f, -0.0f};
    const bool isWild = random.Chance(2);
    std::vector<float> samples(static_cast<std::size_t>(count));
    for (float& sample : samples) {
        sample = static_cast<float>(random.Within(-60, 400));
        if (isWild && random.Chance(10)) sample = kSpecial[random.Below(5)];
    }
    return samples;
}

// Slices of up to three runs of the product's scratch.
TEST(GreyConversion, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        RandomSource random(seed);
        const int width = random.Between(1, random.Chance(4) ? 10000 : 40);
        const int depth = random.Between(1, 3);
        const reference::Volume stack = FloatStack(width, 1, depth, RandomSamples(random, width * depth));
        const float low = static_cast<float>(random.Within(-50, 200));
        const ValueRange range = {random.Chance(5) ? low : low + static_cast<float>(random.Within(-9, 300)),
                                  low};
        reference::Range plainDisplay;
        const reference::Volume plain = reference::ConvertToGrey(stack, {range.max, range.min}, plainDisplay);

        ValueRange display;
        const OwnedVolume result = Converted(stack, range, display);

        ASSERT_TRUE(HasSamples(result.get(), plain)) << "seed " << seed;
        ASSERT_EQ(std::bit_cast<std::uint32_t>(display.max), std::bit_cast<std::uint32_t>(plainDisplay.max))
            << "seed " << seed;
        ASSERT_EQ(std::bit_cast<std::uint32_t>(display.min), std::bit_cast<std::uint32_t>(plainDisplay.min))
            << "seed " << seed;
    }
}

} // namespace
