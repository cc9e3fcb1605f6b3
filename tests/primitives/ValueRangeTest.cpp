#include "primitives/ValueRange.h"

#include "reference/PlainPipeline.h"
#include "support/GuardedBytes.h"
#include "support/OnEachInstructionSet.h"
#include "support/RandomSource.h"
#include "support/SpecialValues.h"
#include "support/Stacks.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;
using primitives::ValueRange;

class ValueRangeTest : public OnEachInstructionSet {};
Z3D_ON_EACH_INSTRUCTION_SET(ValueRangeTest);

std::uint32_t Bits(float value) { return std::bit_cast<std::uint32_t>(value); }

ValueRange RangeOf(const std::vector<float>& samples, ValueRange range = {}) {
    primitives::WidenByFloats(range, samples.data(), samples.size());
    return range;
}

ValueRange RangeOf(const std::vector<std::uint8_t>& samples, ValueRange range = {}) {
    primitives::WidenByBytes(range, samples.data(), samples.size());
    return range;
}

void ExpectBits(const ValueRange& range, float max, float min) {
    EXPECT_EQ(Bits(range.max), Bits(max));
    EXPECT_EQ(Bits(range.min), Bits(min));
}

TEST_P(ValueRangeTest, StartsWithTheExtremesTheWrongWayRound) {
    EXPECT_EQ(Bits(ValueRange().max), 0xFF7FFFFFu);
    EXPECT_EQ(Bits(ValueRange().min), 0x7F7FFFFFu);
}

TEST_P(ValueRangeTest, HoldsTheSmallestAndTheLargestSample) {
    ExpectBits(RangeOf(std::vector<float>{3, -7.5f, 12, 0.25f}), 12, -7.5f);
    ExpectBits(RangeOf(std::vector<float>{3}), 3, 3);
    ExpectBits(RangeOf(std::vector<std::uint8_t>{9, 200, 17}), 200, 9);
    ExpectBits(RangeOf(std::vector<std::uint8_t>{0}), 0, 0);
}

TEST_P(ValueRangeTest, IsOnlyEverWidened) {
    const ValueRange before = {10, 5};

    ExpectBits(RangeOf(std::vector<float>{7, 8}, before), 10, 5);
    ExpectBits(RangeOf(std::vector<float>{4, 11}, before), 11, 4);
    ExpectBits(RangeOf(std::vector<std::uint8_t>{4, 7}, before), 10, 4);
}

TEST_P(ValueRangeTest, KeepsItsStartWithoutASample) {
    ExpectBits(RangeOf(std::vector<float>{}), ValueRange().max, ValueRange().min);
    ExpectBits(RangeOf(std::vector<std::uint8_t>{}), ValueRange().max, ValueRange().min);
}

TEST_P(ValueRangeTest, SkipsWhatIsNotANumber) {
    ExpectBits(RangeOf(std::vector<float>{kNaN, 2, kNaN, 1, kNaN}), 2, 1);
    ExpectBits(RangeOf(std::vector<float>(9, kNaN)), ValueRange().max, ValueRange().min);
}

// An infinity cannot be smaller than the start of the minimum, nor the lower one greater than the maximum's.
TEST_P(ValueRangeTest, TakesInfinitiesAsNumbers) {
    ExpectBits(RangeOf(std::vector<float>{1, kInfinity, -kInfinity}), kInfinity, -kInfinity);
    ExpectBits(RangeOf(std::vector<float>{kInfinity}), kInfinity, ValueRange().min);
    ExpectBits(RangeOf(std::vector<float>{-kInfinity}), ValueRange().max, -kInfinity);
}

TEST_P(ValueRangeTest, KeepsTheFirstOfTwoZeroes) {
    ExpectBits(RangeOf(std::vector<float>{-1, -0.0f, 0.0f}), -0.0f, -1);
    ExpectBits(RangeOf(std::vector<float>{-1, 0.0f, -0.0f}), 0.0f, -1);
    ExpectBits(RangeOf(std::vector<float>{1, 0.0f, -0.0f}), 1, 0.0f);
    ExpectBits(RangeOf(std::vector<float>{1, -0.0f, 0.0f}), 1, -0.0f);
    ExpectBits(RangeOf(std::vector<float>{-0.0f}, {0.0f, 0.0f}), 0.0f, 0.0f);
    ExpectBits(RangeOf(std::vector<float>{0.0f}, {-0.0f, -0.0f}), -0.0f, -0.0f);
}

TEST_P(ValueRangeTest, KeepsTheFirstOfTwoZeroesOfSingleValuesAndOfRanges) {
    for (const float first : {0.0f, -0.0f}) {
        ValueRange range = {first, first};
        range.Widen(-first);
        range.Widen(ValueRange{-first, -first});
        ExpectBits(range, first, first);
    }
}

// Lane 3 sees its zero before lane 0 does.
TEST_P(ValueRangeTest, KeepsTheFirstOfTwoZeroesInDifferentLanes) {
    std::vector<float> samples(64, -2.0f);
    samples[3] = -0.0f;
    samples[32] = 0.0f;
    ExpectBits(RangeOf(samples), -0.0f, -2);

    for (float& sample : samples)
        sample = -sample;
    ExpectBits(RangeOf(samples), 2, 0.0f);
}

// Few kinds of values, so that ties, zeroes and NaNs meet often.
float RandomSample(RandomSource& random, int kind) {
    constexpr float kSpecial[] = {0.0f, -0.0f, 0.0f, -0.0f, kNaN, kInfinity, -kInfinity, 1e-42f};
    if (kind % 4 == 0) return kSpecial[random.Below(2)];
    if (kind % 4 == 1) return kSpecial[random.Below(8)];
    const float magnitude = static_cast<float>(random.Within(0, 4));
    if (kind % 4 == 2) return random.Chance(3) ? kSpecial[random.Below(5)] : -magnitude;
    return random.Chance(3) ? kSpecial[random.Below(5)] : magnitude;
}

TEST_P(ValueRangeTest, IsTheLiteralScanOfFloats) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        RandomSource random(seed);
        std::vector<float> samples(static_cast<std::size_t>(random.Between(0, seed % 50 == 0 ? 20000 : 70)));
        for (float& sample : samples)
            sample = RandomSample(random, static_cast<int>(seed));
        const ValueRange start = seed % 3 == 0 ? ValueRange{0.0f, -0.0f} : ValueRange();
        reference::Range plain = {start.max, start.min};
        if (!samples.empty())
            reference::Scan(FloatStack(static_cast<int>(samples.size()), 1, 1, samples), plain);

        const ValueRange range = RangeOf(samples, start);

        ASSERT_EQ(Bits(range.max), Bits(plain.max)) << "seed " << seed;
        ASSERT_EQ(Bits(range.min), Bits(plain.min)) << "seed " << seed;
    }
}

TEST_P(ValueRangeTest, IsTheLiteralScanOfBytes) {
    for (std::uint32_t seed = 1; seed <= 1000; ++seed) {
        RandomSource random(seed);
        const int size = random.Between(1, seed % 50 == 0 ? 40000 : 70);
        std::vector<std::uint8_t> samples(static_cast<std::size_t>(size));
        const int low = random.Below(256);
        const int high = random.Between(low, 255);
        for (std::uint8_t& sample : samples)
            sample = static_cast<std::uint8_t>(random.Between(low, high));
        reference::Range plain;
        reference::Scan(ByteStack(size, 1, 1, samples), plain);

        const ValueRange range = RangeOf(samples);

        ASSERT_EQ(Bits(range.max), Bits(plain.max)) << "seed " << seed;
        ASSERT_EQ(Bits(range.min), Bits(plain.min)) << "seed " << seed;
    }
}

TEST_P(ValueRangeTest, ReadsNothingBesideTheSamples) {
    for (const GuardedEnd end : {GuardedEnd::First, GuardedEnd::Last}) {
        for (std::size_t count = 1; count <= 140; ++count) {
            const GuardedBytes floats(4 * count, end);
            const GuardedBytes bytes(count, end);
            floats.As<float>()[count - 1] = -3;
            bytes.As<std::uint8_t>()[count - 1] = 3;

            ValueRange range;
            primitives::WidenByFloats(range, floats.As<float>(), count);
            ExpectBits(range, count == 1 ? -3.0f : 0.0f, -3);
            range = {};
            primitives::WidenByBytes(range, bytes.As<std::uint8_t>(), count);
            ExpectBits(range, 3, count == 1 ? 3.0f : 0.0f);
        }
    }
}

} // namespace
