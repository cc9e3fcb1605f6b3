#include "primitives/Range.h"

#include "primitives/Regions.h"
#include "reference/PlainPrimitives.h"
#include "support/SpecialValues.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::kLargestInt;

TEST(MinMax, OfOnePixelIsThatPixelTwice) {
    const std::uint8_t pixel = 42;
    std::uint8_t smallest = 0, largest = 0;

    EXPECT_EQ(MinMax8uC1(&pixel, 1, 1, 1, &smallest, &largest), StatusNoError);

    EXPECT_EQ(smallest, 42);
    EXPECT_EQ(largest, 42);
}

// The heap block ends with the first row: a scan that went on would leave it at once.
TEST(MinMax, StopsAfterTheRowThatCompletesTheRange) {
    for (const std::size_t width : {2u, 15u, 16u, 17u, 64u, 100u}) {
        std::vector<std::uint8_t> row(width, 100);
        row[width - 1] = 0;
        row[width / 2 - 1] = 255;
        std::uint8_t smallest = 9, largest = 9;

        EXPECT_EQ(MinMax8uC1(row.data(), kLargestInt, static_cast<std::int32_t>(width), kLargestInt,
                             &smallest, &largest),
                  StatusNoError);

        EXPECT_EQ(smallest, 0);
        EXPECT_EQ(largest, 255);
    }
}

TEST(MinMax, ReadsOnUntilBothEndsAreFound) {
    const std::vector<std::uint8_t> image = {0, 5, 6, /**/ 3, 254, 3, /**/ 3, 3, 255};
    std::uint8_t smallest = 9, largest = 9;

    EXPECT_EQ(MinMax8uC1(image.data(), 3, 3, 3, &smallest, &largest), StatusNoError);

    EXPECT_EQ(smallest, 0);
    EXPECT_EQ(largest, 255);
}

TEST(MinMax, ChecksPointersThenSizeThenStep) {
    const std::uint8_t pixel = 1;
    std::uint8_t smallest = 7, largest = 8;

    EXPECT_EQ(MinMax8uC1(nullptr, 0, 0, 0, &smallest, &largest), StatusNullPointer);
    EXPECT_EQ(MinMax8uC1(&pixel, 0, 0, 0, nullptr, &largest), StatusNullPointer);
    EXPECT_EQ(MinMax8uC1(&pixel, 0, 0, 0, &smallest, nullptr), StatusNullPointer);
    EXPECT_EQ(MinMax8uC1(&pixel, 0, 0, 1, &smallest, &largest), StatusSizeError);
    EXPECT_EQ(MinMax8uC1(&pixel, 0, 1, -1, &smallest, &largest), StatusSizeError);
    EXPECT_EQ(MinMax8uC1(&pixel, 0, 1, 1, &smallest, &largest), StatusStepError);

    EXPECT_EQ(smallest, 7);
    EXPECT_EQ(largest, 8);
}

TEST(MinMax, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 1000; ++seed) {
        test::Random random(seed);
        const std::int32_t width = random.Length();
        const std::int32_t height = random.Between(1, 8);
        test::Region source(random, static_cast<std::size_t>(width), height);
        const std::int32_t kLow = random.Between(0, 200);
        if (random.OneIn(2))
            for (std::uint8_t& byte : source.bytes)
                byte = static_cast<std::uint8_t>(kLow + byte % 50);
        std::uint8_t expected[2] = {1, 2}, actual[2] = {3, 4};

        reference::MinMax8uC1(source.Bytes(), source.step, width, height, &expected[0], &expected[1]);
        ASSERT_EQ(MinMax8uC1(source.Bytes(), source.step, width, height, &actual[0], &actual[1]),
                  StatusNoError);

        ASSERT_TRUE(test::SameBytes(expected, actual)) << "seed " << seed;
    }
}

// The results' bit patterns, so that the sign of a zero and the payload of a NaN show.
std::uint32_t MaxBits(const std::vector<std::uint32_t>& bits) {
    std::uint32_t largest = 0xDEADBEEF;
    EXPECT_EQ(VecMax32f(reinterpret_cast<const float*>(bits.data()), static_cast<std::int32_t>(bits.size()),
                        reinterpret_cast<float*>(&largest)),
              StatusNoError);
    return largest;
}

std::uint32_t MinBits(const std::vector<std::uint32_t>& bits) {
    std::uint32_t smallest = 0xDEADBEEF;
    EXPECT_EQ(VecMin32f(reinterpret_cast<const float*>(bits.data()), static_cast<std::int32_t>(bits.size()),
                        reinterpret_cast<float*>(&smallest)),
              StatusNoError);
    return smallest;
}

constexpr std::uint32_t kOne = 0x3F800000, kTwo = 0x40000000, kThree = 0x40400000;
constexpr std::uint32_t kZero = 0x00000000, kMinusZero = 0x80000000;
constexpr std::uint32_t kQuiet = 0x7FC00123, kSignalling = 0xFF812345;

TEST(VectorRange, OfNumbers) {
    EXPECT_EQ(MinBits({kThree, kOne, kTwo}), kOne);
    EXPECT_EQ(MaxBits({kOne, kThree, kThree}), kThree);
    EXPECT_EQ(MinBits({kTwo}), kTwo);
    EXPECT_EQ(MaxBits({kTwo}), kTwo);
}

TEST(VectorRange, TiesKeepTheEarlierZero) {
    EXPECT_EQ(MaxBits({kZero, kMinusZero}), kZero);
    EXPECT_EQ(MaxBits({kMinusZero, kZero}), kMinusZero);
    EXPECT_EQ(MinBits({kZero, kMinusZero}), kZero);
    EXPECT_EQ(MinBits({kMinusZero, kZero}), kMinusZero);
    EXPECT_EQ(MinBits({kOne, kQuiet, kMinusZero, kZero}), kMinusZero);
    EXPECT_EQ(MinBits({kZero, kQuiet, kMinusZero, kZero}), kMinusZero);
}

TEST(VectorRange, TheLargestSkipsNaNsUnlessItBeginsWithOne) {
    EXPECT_EQ(MaxBits({kOne, kQuiet, kTwo}), kTwo);
    EXPECT_EQ(MaxBits({kOne, kTwo, kSignalling}), kTwo);
    EXPECT_EQ(MaxBits({kQuiet, kOne, kTwo}), kQuiet);
    EXPECT_EQ(MaxBits({kSignalling, kOne, kQuiet}), kSignalling);
}

TEST(VectorRange, TheSmallestStartsAgainAfterEachNaN) {
    EXPECT_EQ(MinBits({kOne, kQuiet, kTwo, kThree}), kTwo);
    EXPECT_EQ(MinBits({kQuiet, kThree, kTwo}), kTwo);
    EXPECT_EQ(MinBits({kOne, kSignalling}), kSignalling);
    EXPECT_EQ(MinBits({kQuiet, kSignalling}), kSignalling);
    EXPECT_EQ(MinBits({kSignalling, kQuiet, kThree}), kThree);
}

TEST(VectorRange, ChecksPointersThenLength) {
    const float element = 1.0f;
    float out = 7.0f;
    for (const std::int32_t length : {0, -1, -kLargestInt - 1, 1 << 30, kLargestInt}) {
        EXPECT_EQ(VecMax32f(nullptr, length, &out), StatusNullPointer);
        EXPECT_EQ(VecMax32f(&element, length, nullptr), StatusNullPointer);
        EXPECT_EQ(VecMax32f(&element, length, &out), StatusSizeError);
        EXPECT_EQ(VecMin32f(nullptr, length, &out), StatusNullPointer);
        EXPECT_EQ(VecMin32f(&element, length, nullptr), StatusNullPointer);
        EXPECT_EQ(VecMin32f(&element, length, &out), StatusSizeError);
    }
    EXPECT_EQ(out, 7.0f);
}

// Few kinds of values, so that ties, both zeros and NaNs of different payloads meet in every order.
std::vector<std::uint32_t> FewKinds(test::Random& random) {
    constexpr std::uint32_t kKinds[] = {kZero,      kMinusZero, kQuiet,     kSignalling,
                                        kOne,       0xBF800000, 0x7F800000, 0xFF800000,
                                        0x00000001, 0x80000001, 0x7FFFFFFF, kTwo};
    constexpr std::uint32_t kZeros[] = {kZero, kMinusZero};
    const std::uint32_t nanRarity = random.OneIn(2) ? 60 : 3;
    const bool onlyZeros = random.OneIn(4);
    const std::int32_t longer = random.OneIn(2) ? random.Between(0, 300) : 0;
    std::vector<std::uint32_t> bits(static_cast<std::size_t>(random.Length() + longer));
    for (std::uint32_t& pattern : bits) {
        pattern = onlyZeros ? random.OneOf(kZeros) : random.OneOf(kKinds);
        const bool isNaN = (pattern & 0x7FFFFFFF) > 0x7F800000;
        if (isNaN && !random.OneIn(nanRarity)) pattern = kMinusZero;
    }
    return bits;
}

TEST(VectorRange, IsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 20000; ++seed) {
        test::Random random(seed);
        const std::vector<std::uint32_t> bits = FewKinds(random);
        const auto length = static_cast<std::int32_t>(bits.size());
        const float* source = reinterpret_cast<const float*>(bits.data());
        std::uint32_t smallest = 1, largest = 1;

        reference::VecMin32f(source, length, reinterpret_cast<float*>(&smallest));
        reference::VecMax32f(source, length, reinterpret_cast<float*>(&largest));

        ASSERT_EQ(MinBits(bits), smallest) << "seed " << seed;
        ASSERT_EQ(MaxBits(bits), largest) << "seed " << seed;
    }
}

} // namespace
