#include "compose/ChannelKernels.h"

#include "reference/PlainPipeline.h"
#include "reference/PlainPrimitives.h"
#include "support/OnEachInstructionSet.h"
#include "support/RandomSource.h"
#include "support/Refusals.h"
#include "support/SpecialValues.h"
#include "support/Stacks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <optional>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;
using primitives::ValueRange;

using Bytes = std::vector<std::uint8_t>;
using Floats = std::vector<float>;

template <class Sample>
struct Channels {
    std::optional<std::vector<Sample>> red, green, blue;
};

template <class Sample>
const Sample* PlaneOf(const std::optional<std::vector<Sample>>& channel) {
    return channel ? channel->data() : nullptr;
}

Bytes Composed(const Channels<std::uint8_t>& channels, std::size_t count, const ValueRange& range,
               ValueRange& display) {
    Bytes pixels(3 * count);
    EXPECT_TRUE(
        compose::ComposeBytes({PlaneOf(channels.red), PlaneOf(channels.green), PlaneOf(channels.blue)},
                              pixels.data(), count, range, display));
    return pixels;
}

Bytes Composed(const Channels<float>& channels, std::size_t count, const ValueRange& range,
               ValueRange& display) {
    Bytes pixels(3 * count);
    EXPECT_TRUE(
        compose::ComposeFloats({PlaneOf(channels.red), PlaneOf(channels.green), PlaneOf(channels.blue)},
                               pixels.data(), count, range, display));
    return pixels;
}

TEST(ChannelKernels, PassBytesThroughAFullRange) {
    ValueRange display;

    const Bytes pixels = Composed({Bytes{0, 1}, Bytes{100, 254}, Bytes{255, 128}}, 2, {255, 0}, display);

    EXPECT_EQ(pixels, (Bytes{0, 100, 255, 1, 254, 128}));
    // Grey (1365 * 355) >> 12 = 118 and (1365 * 383) >> 12 = 127, which becomes 128.
    EXPECT_EQ(display.min, 118 * 3);
    EXPECT_EQ(display.max, 128 * 3);
}

// 0 stands for 10 and 255 for 20: 127 for 14.98, 128 for 15.02.
TEST(ChannelKernels, MapBytesToTheRangeTheyStandFor) {
    ValueRange display;

    const Bytes pixels = Composed({Bytes{0}, Bytes{127}, Bytes{255}}, 1, {20, 10}, display);

    EXPECT_EQ(pixels, (Bytes{10, 15, 20}));
}

TEST(ChannelKernels, SaturateBytesBeyondADisplay) {
    ValueRange display;

    const Bytes pixels = Composed({Bytes{0}, Bytes{128}, Bytes{255}}, 1, {300, -300}, display);

    EXPECT_EQ(pixels, (Bytes{0, 1, 255}));
}

TEST(ChannelKernels, TakeAMissingByteChannelAsTheLowEnd) {
    ValueRange display;

    const Bytes pixels = Composed({Bytes{255, 255}, {}, {}}, 2, {200, 7.6f}, display);

    EXPECT_EQ(pixels, (Bytes{200, 8, 8, 200, 8, 8}));
}

TEST(ChannelKernels, GiveBlackForBytesWithoutARange) {
    ValueRange display;

    EXPECT_EQ(Composed({Bytes{9}, Bytes{9}, Bytes{9}}, 1, {9, 9}, display), (Bytes{0, 0, 0}));
    EXPECT_EQ(Composed({Bytes{9}, Bytes{9}, Bytes{9}}, 1, {5, 9}, display), (Bytes{0, 0, 0}));
    // Black's upper end is 1, as a sum of three channels.
    EXPECT_EQ(display.min, 0);
    EXPECT_EQ(display.max, 3);
}

TEST(ChannelKernels, MapFloatsFromTheirRange) {
    ValueRange display;

    const Bytes pixels = Composed({Floats{0, 0.5f}, Floats{1, 2}, Floats{-1, 0.25f}}, 2, {1, 0}, display);

    // 127.5 and 63.75.
    EXPECT_EQ(pixels, (Bytes{0, 255, 0, 128, 255, 64}));
}

TEST(ChannelKernels, TakeAMissingFloatChannelAsZeroBeforeTheMapping) {
    ValueRange display;

    const Bytes pixels = Composed({Floats{3}, {}, {}}, 1, {3, -1}, display);

    // 255 * (0 + 1) / 4 = 63.75.
    EXPECT_EQ(pixels, (Bytes{255, 64, 64}));
}

TEST(ChannelKernels, LeaveFloatsWithoutARangeBlack) {
    ValueRange display;

    EXPECT_EQ(Composed({Floats{5}, Floats{5}, Floats{5}}, 1, {5, 5}, display), (Bytes{0, 0, 0}));
    EXPECT_EQ(Composed({Floats{kNaN}, {}, {}}, 1, ValueRange(), display), (Bytes{0, 0, 0}));
}

TEST(ChannelKernels, KnowThatWhiteIsShortOfFullScale) {
    ValueRange display;

    Composed({Bytes{255}, Bytes{255}, Bytes{255}}, 1, {255, 0}, display);

    EXPECT_EQ(display.min, 254 * 3);
    EXPECT_EQ(display.max, 765);
}

TEST(ChannelKernels, OnlyEverWidenTheDisplayRange) {
    ValueRange display = {700, 30};

    Composed({Bytes{100}, Bytes{100}, Bytes{100}}, 1, {255, 0}, display);

    EXPECT_EQ(display.min, 30);
    EXPECT_EQ(display.max, 700);
}

// The shades of grey of all 2^24 colours depend on the sum of their channels alone, and so does the display range.
TEST(ChannelKernels, MeasureEveryColourByItsSum) {
    int greyOfSum[766];
    for (int sum = 0; sum <= 765; ++sum) {
        const auto third = [&](int from) {
            return static_cast<std::uint8_t>(std::clamp(sum - from, 0, 255));
        };
        ValueRange display;
        Composed({Bytes{third(0)}, Bytes{third(255)}, Bytes{third(510)}}, 1, {255, 0}, display);
        greyOfSum[sum] = static_cast<int>(display.min) / 3;
        ASSERT_EQ(display.max, static_cast<float>(3 * (greyOfSum[sum] + 1)));
    }

    const float kThirds[3] = {1.0f / 3.0f, 1.0f / 3.0f, 1.0f / 3.0f};
    Bytes colours(3 * 65536);
    Bytes grey(65536);
    for (std::size_t red = 0; red < 256; ++red) {
        for (std::size_t rest = 0; rest < 65536; ++rest) {
            colours[3 * rest] = static_cast<std::uint8_t>(red);
            colours[3 * rest + 1] = static_cast<std::uint8_t>(rest >> 8);
            colours[3 * rest + 2] = static_cast<std::uint8_t>(rest);
        }
        reference::ColorToGray8uC3C1(colours.data(), 3 * 65536, grey.data(), 65536, 65536, 1, kThirds);
        for (std::size_t rest = 0; rest < 65536; ++rest)
            ASSERT_EQ(grey[rest], greyOfSum[red + (rest >> 8) + (rest & 255)]) << red << ", " << rest;
    }
}

TEST(ChannelKernels, FailWithoutScratch) {
    const Bytes plane = {1, 2, 3};
    const Floats floats = {1, 2, 3};
    ForEveryRefusal([&](bool refused) {
        Bytes pixels(9);
        ValueRange display;
        const bool composed =
            compose::ComposeBytes({plane.data(), nullptr, nullptr}, pixels.data(), 3, {3, 1.5f}, display);
        EXPECT_EQ(composed, !refused);
    });
    ForEveryRefusal([&](bool refused) {
        Bytes pixels(9);
        ValueRange display;
        const bool composed = compose::ComposeFloats({floats.data(), nullptr, nullptr}, pixels.data(), 3,
                                                     {kInfinity, 1}, display);
        EXPECT_EQ(composed, !refused);
    });
}

TEST(ChannelKernels, TakeNoScratchForTheRangesOfOrdinarySamples) {
    const Bytes plane = {1, 2, 3};
    const Floats floats = {1, 2, 3};
    Bytes pixels(9);
    ValueRange display;
    RefuseFrom(0);
    EXPECT_TRUE(compose::ComposeBytes({plane.data(), nullptr, nullptr}, pixels.data(), 3, {3, 1}, display));
    EXPECT_TRUE(compose::ComposeFloats({floats.data(), nullptr, nullptr}, pixels.data(), 3, {3, 1}, display));
    RefuseNothing();
}

// Widths of no, one, two and three runs of the product's scratch.
int RandomCount(RandomSource& random) { return random.Between(1, random.Chance(4) ? 3000 : 40); }

ValueRange RandomRange(RandomSource& random) {
    constexpr ValueRange kSpecial[] = {{255, 0}, {}, {7, 7}, {3, 9}, {kInfinity, 0}, {0, -kInfinity}};
    if (random.Chance(3)) return kSpecial[random.Below(6)];
    if (random.Chance(3)) {
        const int low = random.Below(255);
        return {static_cast<float>(random.Between(low + 1, 255)), static_cast<float>(low)};
    }
    const float low = static_cast<float>(random.Within(-50, 200));
    return {low + static_cast<float>(random.Within(0, 300)), low};
}

void ExpectPlain(const Bytes& pixels, const ValueRange& display, const reference::Volume& plain,
                 const reference::Range& plainDisplay, std::uint32_t seed) {
    ASSERT_EQ(pixels, plain.voxels) << "seed " << seed;
    ASSERT_EQ(std::bit_cast<std::uint32_t>(display.max), std::bit_cast<std::uint32_t>(plainDisplay.max));
    ASSERT_EQ(std::bit_cast<std::uint32_t>(display.min), std::bit_cast<std::uint32_t>(plainDisplay.min));
}

// The plain form's channels: at least one.
template <class Sample, class MakeStack>
void CompareWithPlain(const Channels<Sample>& channels, int count, const ValueRange& range,
                      MakeStack makeStack, std::uint32_t seed) {
    std::optional<reference::Volume> stacks[3];
    if (channels.red) stacks[0] = makeStack(count, 1, 1, *channels.red);
    if (channels.green) stacks[1] = makeStack(count, 1, 1, *channels.green);
    if (channels.blue) stacks[2] = makeStack(count, 1, 1, *channels.blue);
    const auto pointerTo = [](const auto& stack) { return stack ? &*stack : nullptr; };
    reference::Range plainDisplay;
    const reference::Volume plain =
        reference::Compose(pointerTo(stacks[0]), pointerTo(stacks[1]), pointerTo(stacks[2]),
                           {range.max, range.min}, plainDisplay);

    ValueRange display;
    const Bytes pixels = Composed(channels, static_cast<std::size_t>(count), range, display);

    ExpectPlain(pixels, display, plain, plainDisplay, seed);
}

template <class Sample, class MakeSample>
Channels<Sample> RandomChannels(RandomSource& random, int count, MakeSample makeSample) {
    const auto channel = [&] {
        std::vector<Sample> samples(static_cast<std::size_t>(count));
        for (Sample& sample : samples)
            sample = makeSample();
        return samples;
    };
    const int present = random.Between(1, 7);
    Channels<Sample> channels;
    if (present & 1) channels.red = channel();
    if (present & 2) channels.green = channel();
    if (present & 4) channels.blue = channel();
    return channels;
}

class ChannelKernelsOnEachSet : public OnEachInstructionSet {};
Z3D_ON_EACH_INSTRUCTION_SET(ChannelKernelsOnEachSet);

TEST_P(ChannelKernelsOnEachSet, AreThePlainFormForBytes) {
    for (std::uint32_t seed = 1; seed <= 400; ++seed) {
        RandomSource random(seed);
        const int count = RandomCount(random);
        const int top = random.Between(1, 255);
        const auto channels = RandomChannels<std::uint8_t>(
            random, count, [&] { return static_cast<std::uint8_t>(random.Between(0, top)); });
        ASSERT_NO_FATAL_FAILURE(CompareWithPlain(channels, count, RandomRange(random), ByteStack, seed));
    }
}

TEST_P(ChannelKernelsOnEachSet, AreThePlainFormForFloats) {
    constexpr float kSpecial[] = {kNaN, kInfinity, -kInfinity, 0.0f, -0.0f, 7.0f};
    for (std::uint32_t seed = 1; seed <= 400; ++seed) {
        RandomSource random(seed);
        const int count = RandomCount(random);
        const auto channels = RandomChannels<float>(random, count, [&] {
            return random.Chance(8) ? kSpecial[random.Below(6)] : static_cast<float>(random.Within(-60, 400));
        });
        ASSERT_NO_FATAL_FAILURE(CompareWithPlain(channels, count, RandomRange(random), FloatStack, seed));
    }
}

} // namespace
