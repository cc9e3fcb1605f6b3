#include "primitives/Convert.h"

#include "primitives/Regions.h"
#include "reference/PlainPrimitives.h"
#include "support/SpecialValues.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::kInfinity;
using test::kLargestInt;
using test::kNaN;

std::int32_t Image(float value, std::int32_t mode) {
    const float source[3] = {value, value, value};
    std::uint8_t destination[3] = {};
    EXPECT_EQ(Convert32f8uC3(source, 12, destination, 3, 1, 1, mode), StatusNoError);
    EXPECT_EQ(destination[0], destination[1]);
    EXPECT_EQ(destination[0], destination[2]);
    return destination[0];
}

std::int32_t Vector(float value, std::int32_t mode, std::int32_t scaleFactor) {
    std::uint8_t destination = 77;
    EXPECT_EQ(VecConvert32f8uSfs(&value, &destination, 1, mode, scaleFactor), StatusNoError);
    return destination;
}

TEST(Convert, RoundsHalfToEvenInModeOne) {
    const struct {
        float value;
        int byte;
    } kCases[] = {{0.4f, 0},       {0.5f, 0},        {1.5f, 2},       {2.5f, 2},   {3.5f, 4},
                  {254.5f, 254},   {254.6f, 255},    {255.0f, 255},   {1e9f, 255}, {-3.0f, 0},
                  {-0.0f, 0},      {0.49999997f, 0}, {0.5000001f, 1}, {kNaN, 0},   {kInfinity, 255},
                  {-kInfinity, 0}, {1e-45f, 0},      {3e38f, 255}};
    for (const auto& [value, byte] : kCases) {
        EXPECT_EQ(Image(value, 1), byte) << value;
        EXPECT_EQ(Vector(value, 1, 0), byte) << value;
    }
}

TEST(Convert, TruncatesInEveryOtherMode) {
    for (const std::int32_t mode : {0, 2, -1, kLargestInt}) {
        EXPECT_EQ(Image(254.9f, mode), 254);
        EXPECT_EQ(Image(0.99f, mode), 0);
        EXPECT_EQ(Image(255.0f, mode), 255);
        EXPECT_EQ(Image(kNaN, mode), 0);
        EXPECT_EQ(Image(-0.5f, mode), 0);
        EXPECT_EQ(Vector(1e30f, mode, 0), 255);
        EXPECT_EQ(Vector(3.999f, mode, 0), 3);
    }
}

TEST(Convert, ScalesByPowersOfTwo) {
    EXPECT_EQ(Vector(3.0f, 1, 1), 2);
    EXPECT_EQ(Vector(5.0f, 1, 1), 2);
    EXPECT_EQ(Vector(7.0f, 0, 1), 3);
    EXPECT_EQ(Vector(0.75f, 1, -1), 2);
    EXPECT_EQ(Vector(1.25f, 1, -1), 2);
    EXPECT_EQ(Vector(3.0f, 1, -6), 192);
    EXPECT_EQ(Vector(4.0f, 1, -6), 255);
}

// Products that a float could not hold: the multiplication is in double.
TEST(Convert, ScalesBeyondTheRangeOfFloats) {
    EXPECT_EQ(Vector(1e-45f, 1, -149), 1);
    EXPECT_EQ(Vector(1e-45f, 1, -156), 128);
    EXPECT_EQ(Vector(0x1p127f, 1, 120), 128);
    EXPECT_EQ(Vector(0x1p127f, 1, 1074), 0);
    EXPECT_EQ(Vector(1.0f, 1, kLargestInt), 0);
    EXPECT_EQ(Vector(kInfinity, 1, kLargestInt), 0); // infinity times zero is not a number
    EXPECT_EQ(Vector(kInfinity, 1, 1074), 255);
    EXPECT_EQ(Vector(1e-45f, 1, -kLargestInt - 1), 255);
    EXPECT_EQ(Vector(0.0f, 1, -1023), 0);
    EXPECT_EQ(Vector(0.0f, 1, -kLargestInt), 0);
    EXPECT_EQ(Vector(-1.0f, 1, -kLargestInt), 0);
}

TEST(Convert, ChecksPointersThenSizeThenSteps) {
    const float source[3] = {1, 1, 1};
    std::uint8_t destination[3] = {7, 7, 7};

    EXPECT_EQ(VecConvert32f8uSfs(nullptr, destination, 0, 1, 0), StatusNullPointer);
    EXPECT_EQ(VecConvert32f8uSfs(source, nullptr, 0, 1, 0), StatusNullPointer);
    EXPECT_EQ(VecConvert32f8uSfs(source, destination, 0, 1, 0), StatusSizeError);
    EXPECT_EQ(VecConvert32f8uSfs(source, destination, kLargestInt, 1, 0), StatusSizeError);
    EXPECT_EQ(Convert32f8uC3(nullptr, 0, destination, 0, 0, 0, 1), StatusNullPointer);
    EXPECT_EQ(Convert32f8uC3(source, 0, nullptr, 0, 0, 0, 1), StatusNullPointer);
    EXPECT_EQ(Convert32f8uC3(source, 0, destination, 0, 0, 1, 1), StatusSizeError);
    EXPECT_EQ(Convert32f8uC3(source, 0, destination, 0, 1, 0, 1), StatusSizeError);
    EXPECT_EQ(Convert32f8uC3(source, 0, destination, 1, 1, 1, 1), StatusStepError);
    EXPECT_EQ(Convert32f8uC3(source, 1, destination, 0, kLargestInt, 1, 1), StatusStepError);
    EXPECT_EQ(Convert32f8uC3(source, 1, destination, 1, kLargestInt, 1, 1), StatusSizeError);

    for (const std::uint8_t byte : destination)
        EXPECT_EQ(byte, 7);
}

void ExpectThePlainForm(const std::vector<float>& values, std::int32_t mode, std::int32_t scaleFactor) {
    const auto length = static_cast<std::int32_t>(values.size());
    std::vector<std::uint8_t> expected(values.size(), 7), actual = expected;

    reference::VecConvert32f8uSfs(values.data(), expected.data(), length, mode, scaleFactor);
    ASSERT_EQ(VecConvert32f8uSfs(values.data(), actual.data(), length, mode, scaleFactor), StatusNoError);

    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(int{actual[i]}, int{expected[i]}) << "mode " << mode << " scale factor " << scaleFactor
                                                    << std::hex << " of 0x" << test::BitsOf(values[i]);
}

// Every 4099th bit pattern; and for every half, the floats around it.
TEST(Convert, IsThePlainFormOverAllFloats) {
    std::vector<float> values;
    for (std::uint64_t bits = 0; bits <= 0xFFFFFFFF; bits += 4099)
        values.push_back(test::FloatOf(static_cast<std::uint32_t>(bits)));
    for (int half = 0; half <= 514; ++half)
        for (std::uint32_t offset = 0; offset < 17; ++offset)
            values.push_back(test::FloatOf(test::BitsOf(static_cast<float>(half) * 0.5f) + offset - 8));

    for (const std::int32_t mode : {0, 1})
        ExpectThePlainForm(values, mode, 0);
}

TEST(Convert, IsThePlainFormWithAnyScaleFactor) {
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        test::Random random(seed);
        const std::int32_t kScaleFactors[] = {
            1, -1, 3, -7, 60, -60, 149, -149, 1100, -1100, random.Between(-300, 300)};
        const std::int32_t scaleFactor = random.OneOf(kScaleFactors);
        std::vector<float> values(static_cast<std::size_t>(random.Length()));
        for (float& value : values) {
            // Bring a tie or its neighbour to the scale at hand, where a float can hold it.
            const double scaled = std::ldexp(static_cast<double>(random.Between(1, 514)) * 0.5, scaleFactor);
            const bool fits = scaled > 1e-44 && scaled < 1e38;
            const std::uint32_t bits = fits && !random.OneIn(4)
                                           ? test::BitsOf(static_cast<float>(scaled)) + random.Bits() % 3 - 1
                                           : test::AnyFloatBits(random);
            std::memcpy(&value, &bits, sizeof value);
        }

        for (const std::int32_t mode : {0, 1})
            ExpectThePlainForm(values, mode, scaleFactor);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

TEST(Convert, OfImagesIsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        test::Random random(seed);
        const std::int32_t width = random.Length();
        const std::int32_t height = random.Between(1, 5);
        const std::int32_t mode = random.Between(0, 1);
        test::Region source(random, 12 * static_cast<std::size_t>(width), height);
        source.FillFloats(random, 3 * width, height);
        test::Region expected(random, 3 * static_cast<std::size_t>(width), height);
        test::Region actual = expected;

        reference::Convert32f8uC3(source.Floats(), source.step, expected.Bytes(), expected.step, width,
                                  height, mode);
        ASSERT_EQ(
            Convert32f8uC3(source.Floats(), source.step, actual.Bytes(), actual.step, width, height, mode),
            StatusNoError);

        ASSERT_TRUE(test::SameRegion(expected, actual)) << "seed " << seed;
    }
}

} // namespace
