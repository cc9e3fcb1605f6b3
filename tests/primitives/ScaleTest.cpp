#include "primitives/Scale.h"

#include "primitives/Regions.h"
#include "reference/PlainPrimitives.h"
#include "support/SpecialValues.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::kInfinity;
using test::kLargestInt;
using test::kNaN;

std::int32_t ToByte(float value, float vMin, float vMax) {
    const float source[3] = {value, value, value};
    std::uint8_t destination[3] = {};
    EXPECT_EQ(Scale32f8uC3(source, 12, destination, 3, 1, 1, vMin, vMax), StatusNoError);
    EXPECT_EQ(destination[0], destination[2]);
    return destination[0];
}

float ToFloat(std::uint8_t byte, float vMin, float vMax) {
    const std::uint8_t source[3] = {byte, byte, byte};
    float destination[3] = {};
    EXPECT_EQ(Scale8u32fC3(source, 3, destination, 12, 1, 1, vMin, vMax), StatusNoError);
    EXPECT_EQ(test::BitsOf(destination[0]), test::BitsOf(destination[2]));
    return destination[0];
}

TEST(ScaleToBytes, RoundsHalfToEven) {
    EXPECT_EQ(ToByte(127.5f, 0.0f, 255.0f), 128);
    EXPECT_EQ(ToByte(128.5f, 0.0f, 255.0f), 128);
    EXPECT_EQ(ToByte(0.5f, 0.0f, 255.0f), 0);
    EXPECT_EQ(ToByte(0.5000001f, 0.0f, 255.0f), 1);
    EXPECT_EQ(ToByte(254.5f, 0.0f, 255.0f), 254);
    EXPECT_EQ(ToByte(0.5f, 0.0f, 1.0f), 128);
    EXPECT_EQ(ToByte(-1.0f, -2.0f, 0.0f), 128);
}

TEST(ScaleToBytes, SaturatesAtTheRange) {
    EXPECT_EQ(ToByte(10.0f, 10.0f, 20.0f), 0);
    EXPECT_EQ(ToByte(20.0f, 10.0f, 20.0f), 255);
    EXPECT_EQ(ToByte(-1e38f, 10.0f, 20.0f), 0);
    EXPECT_EQ(ToByte(1e38f, 10.0f, 20.0f), 255);
    EXPECT_EQ(ToByte(kInfinity, 10.0f, 20.0f), 255);
    EXPECT_EQ(ToByte(-kInfinity, 10.0f, 20.0f), 0);
    EXPECT_EQ(ToByte(kNaN, 10.0f, 20.0f), 0);
    EXPECT_EQ(ToByte(-kNaN, 10.0f, 20.0f), 0);
}

// Nothing lies between the bounds of an infinite range but what scales to 0.
TEST(ScaleToBytes, AnInfiniteRangeHasOnlyItsTop) {
    EXPECT_EQ(ToByte(1e38f, 0.0f, kInfinity), 0);
    EXPECT_EQ(ToByte(kInfinity, 0.0f, kInfinity), 255);
    EXPECT_EQ(ToByte(4.9f, -kInfinity, 5.0f), 0);
    EXPECT_EQ(ToByte(5.0f, -kInfinity, 5.0f), 255);
    EXPECT_EQ(ToByte(-kInfinity, -kInfinity, 5.0f), 0);
    EXPECT_EQ(ToByte(0.0f, -kInfinity, kInfinity), 0);
    EXPECT_EQ(ToByte(kInfinity, -kInfinity, kInfinity), 255);
}

TEST(ScaleToFloats, MapsZeroToTheMinimumExactly) {
    EXPECT_EQ(ToFloat(0, 10.0f, 20.0f), 10.0f);
    EXPECT_EQ(ToFloat(0, -1e30f, 3e38f), -1e30f);
    EXPECT_EQ(ToFloat(0, -0.0f, 1.0f), 0.0f);
}

// The float next to 1/255 is slightly above it: 255 * 255 * it is 255.000015, which is the float after 255.
TEST(ScaleToFloats, MapsTheLargestByteToTheMaximumNearly) {
    EXPECT_EQ(test::BitsOf(ToFloat(255, 0.0f, 255.0f)), 0x437F0001u);
    EXPECT_EQ(test::BitsOf(ToFloat(255, 0.0f, 1.0f)), 0x3F800000u);
    EXPECT_EQ(test::BitsOf(ToFloat(255, 10.0f, 20.0f)), 0x41A00000u);
}

TEST(Scale, RefusesRangesThatAreNotAboveZeroBeforeAnythingElse) {
    const float kRanges[][2] = {
        {5.0f, 5.0f}, {5.0f, 4.0f},           {0.0f, -0.0f},     {kNaN, 1.0f},
        {0.0f, kNaN}, {kInfinity, kInfinity}, {kInfinity, 0.0f}, {-kInfinity, -kInfinity}};
    for (const auto& [vMin, vMax] : kRanges) {
        EXPECT_EQ(Scale32f8uC3(nullptr, 0, nullptr, 0, 0, 0, vMin, vMax), StatusRangeError);
        EXPECT_EQ(Scale8u32fC3(nullptr, 0, nullptr, 0, 0, 0, vMin, vMax), StatusRangeError);
    }
}

TEST(Scale, WritesNothingForAnEmptyRange) {
    const float floats[3] = {9, 9, 9};
    std::uint8_t bytes[3] = {7, 7, 7};

    EXPECT_EQ(Scale32f8uC3(floats, 12, bytes, 3, 1, 1, 9.0f, 9.0f), StatusRangeError);

    for (const std::uint8_t byte : bytes)
        EXPECT_EQ(byte, 7);
}

template <class Source, class Destination, class Scale>
void ExpectChecksInOrder(Scale scale) {
    const Source source[3] = {1, 1, 1};
    Destination destination[3] = {7, 7, 7};
    const auto call = [&](const Source* from, std::int32_t fromStep, Destination* to, std::int32_t toStep,
                          std::int32_t width, std::int32_t height) {
        return scale(from, fromStep, to, toStep, width, height, 0.0f, 1.0f);
    };
    EXPECT_EQ(call(nullptr, 0, destination, 0, 0, 0), StatusNullPointer);
    EXPECT_EQ(call(source, 0, nullptr, 0, 0, 0), StatusNullPointer);
    EXPECT_EQ(call(source, 0, destination, 0, 0, 1), StatusSizeError);
    EXPECT_EQ(call(source, 0, destination, 0, 1, -3), StatusSizeError);
    EXPECT_EQ(call(source, 0, destination, 1, 1, 1), StatusStepError);
    EXPECT_EQ(call(source, 1, destination, -4, kLargestInt, 1), StatusStepError);
    EXPECT_EQ(call(source, 1, destination, 1, kLargestInt, 1), StatusSizeError);
    for (const Destination sample : destination)
        EXPECT_EQ(sample, 7);
}

TEST(Scale, ChecksPointersThenSizeThenSteps) {
    ExpectChecksInOrder<float, std::uint8_t>(Scale32f8uC3);
    ExpectChecksInOrder<std::uint8_t, float>(Scale8u32fC3);
}

struct Bounds {
    float vMin, vMax;
};

Bounds AnyBounds(test::Random& random) {
    constexpr float kLargestFloat = std::numeric_limits<float>::max();
    const Bounds kHostile[] = {{0.0f, 255.0f},
                               {0.0f, 1e-45f},
                               {-kLargestFloat, kLargestFloat},
                               {0.0f, kInfinity},
                               {-kInfinity, 3.0f},
                               {1e30f, test::FloatOf(test::BitsOf(1e30f) + 1)},
                               {-1.0f, test::FloatOf(test::BitsOf(-1.0f) - 1)}};
    if (random.OneIn(4)) return random.OneOf(kHostile);
    const float a = static_cast<float>(random.Fraction() * 2000.0 - 1000.0);
    const float b = static_cast<float>(random.Fraction() * 2000.0 - 1000.0);
    return a < b ? Bounds{a, b} : Bounds{b, a};
}

// Two thirds of the values lie next to a boundary between two bytes, where the last bit decides.
void FillNextToBoundaries(test::Region& region, const Bounds& bounds, test::Random& random) {
    const double range = static_cast<double>(bounds.vMax) - bounds.vMin;
    for (std::size_t at = region.first; at + 4 <= region.bytes.size(); at += 4) {
        const double boundary = (random.Between(0, 255) + 0.5 * random.Between(0, 1)) / 255.0;
        const auto value = static_cast<float>(bounds.vMin + boundary * range);
        const std::uint32_t bits =
            random.OneIn(3) ? test::AnyFloatBits(random) : test::BitsOf(value) + random.Bits() % 5 - 2;
        std::memcpy(region.bytes.data() + at, &bits, sizeof bits);
    }
}

TEST(ScaleToBytes, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
        test::Random random(seed);
        const std::int32_t width = random.Length();
        const std::int32_t height = random.Between(1, 5);
        const auto [vMin, vMax] = AnyBounds(random);
        test::Region source(random, 12 * static_cast<std::size_t>(width), height);
        FillNextToBoundaries(source, {vMin, vMax}, random);
        test::Region expected(random, 3 * static_cast<std::size_t>(width), height);
        test::Region actual = expected;

        reference::Scale32f8uC3(source.Floats(), source.step, expected.Bytes(), expected.step, width, height,
                                vMin, vMax);
        ASSERT_EQ(Scale32f8uC3(source.Floats(), source.step, actual.Bytes(), actual.step, width, height, vMin,
                               vMax),
                  StatusNoError);

        ASSERT_TRUE(test::SameRegion(expected, actual))
            << "seed " << seed << " range " << vMin << " to " << vMax;
    }
}

// The middle of these ranges is 127.99999999999997 or so by x * k + (0.5 - k * vMin), and would be 128 by
// (x - vMin) * k + 0.5.
TEST(ScaleToBytes, FormsTheConstantTermBeforeTheSum) {
    EXPECT_EQ(ToByte(-5.625f, -9.125f, -2.125f), 127);
    EXPECT_EQ(ToByte(9.125f, 5.625f, 12.625f), 127);
    EXPECT_EQ(ToByte(5.125f, 0.625f, 9.625f), 127);
}

TEST(ScaleToFloats, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
        test::Random random(seed);
        const std::int32_t width = random.Length();
        const std::int32_t height = random.Between(1, 5);
        const auto [vMin, vMax] = AnyBounds(random);
        test::Region source(random, 3 * static_cast<std::size_t>(width), height);
        test::Region expected(random, 12 * static_cast<std::size_t>(width), height);
        test::Region actual = expected;

        reference::Scale8u32fC3(source.Bytes(), source.step, expected.Floats(), expected.step, width, height,
                                vMin, vMax);
        ASSERT_EQ(Scale8u32fC3(source.Bytes(), source.step, actual.Floats(), actual.step, width, height, vMin,
                               vMax),
                  StatusNoError);

        ASSERT_TRUE(test::SameRegion(expected, actual))
            << "seed " << seed << " range " << vMin << " to " << vMax;
    }
}

} // namespace
