#include "primitives/Vector.h"

#include "primitives/Regions.h"
#include "reference/PlainPrimitives.h"
#include "support/SpecialValues.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::primitives;
using test::kInfinity;
using test::kLargestInt;
using test::kNaN;

std::vector<float> OfBits(const std::vector<std::uint32_t>& bits) {
    std::vector<float> values(bits.size());
    std::memcpy(values.data(), bits.data(), bits.size() * sizeof(float));
    return values;
}

std::vector<float> AnyFloats(test::Random& random, std::size_t count) {
    std::vector<std::uint32_t> bits(count);
    for (std::uint32_t& pattern : bits)
        pattern = random.OneIn(2) ? random.Bits() : test::AnyFloatBits(random);
    return OfBits(bits);
}

const std::vector<std::uint32_t> kEveryKind = {0x00000000, 0x80000000, 0x7F800000, 0xFF800000, 0x7FC00001,
                                               0x7F800001, 0x00000001, 0xC0200000, 0x7F7FFFFF};

TEST(VectorMultiply, ByOneWritesNothing) {
    std::vector<float> data = OfBits(kEveryKind);
    const std::vector<float> before = data;

    EXPECT_EQ(VecMulC32fInPlace(1.0f, data.data(), 9), StatusNoError);

    EXPECT_TRUE(test::SameBytes(test::AsBytes(before), test::AsBytes(data)));
}

TEST(VectorMultiply, ByZeroOfEitherSignGivesPositiveZeroEverywhere) {
    for (const float zero : {0.0f, -0.0f}) {
        std::vector<float> data = OfBits(kEveryKind);

        EXPECT_EQ(VecMulC32fInPlace(zero, data.data(), 9), StatusNoError);

        for (const float value : data)
            EXPECT_EQ(test::BitsOf(value), 0u);
    }
}

TEST(VectorMultiply, ByNaNWritesNothing) {
    std::vector<float> data = OfBits(kEveryKind);
    const std::vector<float> before = data;

    EXPECT_EQ(VecMulC32fInPlace(kNaN, data.data(), 9), StatusNoError);
    EXPECT_EQ(VecMulC32fInPlace(-kNaN, data.data(), 9), StatusNoError);

    EXPECT_TRUE(test::SameBytes(test::AsBytes(before), test::AsBytes(data)));
}

TEST(VectorMultiply, RoundsEachProductOnce) {
    std::vector<float> data = {3.0f, -2.5f, 16777215.0f, 1e38f, 1e-45f};

    EXPECT_EQ(VecMulC32fInPlace(0.5f, data.data(), 2), StatusNoError);
    EXPECT_EQ(VecMulC32fInPlace(16777215.0f, data.data() + 2, 3), StatusNoError);

    EXPECT_EQ(data[0], 1.5f);
    EXPECT_EQ(data[1], -1.25f);
    EXPECT_EQ(data[2], 281474943156224.0f); // 2^48 - 2^25 + 1 to 24 bits
    EXPECT_EQ(data[3], kInfinity);
    EXPECT_EQ(test::BitsOf(data[4]), 16777215u);
}

TEST(VectorAdd, OfZeroOfEitherSignOrNaNWritesNothing) {
    for (const float value : {0.0f, -0.0f, kNaN}) {
        std::vector<float> data = OfBits(kEveryKind);
        const std::vector<float> before = data;

        EXPECT_EQ(VecAddC32fInPlace(value, data.data(), 9), StatusNoError);

        EXPECT_TRUE(test::SameBytes(test::AsBytes(before), test::AsBytes(data)));
    }
}

TEST(VectorAdd, RoundsEachSumOnce) {
    std::vector<float> data = {1.0f, 16777215.0f, 16777216.0f, -kInfinity};

    EXPECT_EQ(VecAddC32fInPlace(1.0f, data.data(), 4), StatusNoError);

    EXPECT_EQ(data[0], 2.0f);
    EXPECT_EQ(data[1], 16777216.0f);
    EXPECT_EQ(data[2], 16777216.0f); // a tie, to even
    EXPECT_EQ(data[3], -kInfinity);
}

TEST(Vector, CopiesBits) {
    const std::vector<float> source = OfBits(kEveryKind);
    std::vector<float> destination(10, 5.0f);

    EXPECT_EQ(VecCopy32f(source.data(), destination.data(), 9), StatusNoError);

    EXPECT_EQ(destination[9], 5.0f);
    destination.pop_back();
    EXPECT_TRUE(test::SameBytes(test::AsBytes(source), test::AsBytes(destination)));
}

TEST(Vector, ChecksPointersThenLength) {
    float data = 7.0f, other = 8.0f;
    for (const std::int32_t length : {0, -1, -kLargestInt - 1, 1 << 30, kLargestInt}) {
        EXPECT_EQ(VecCopy32f(nullptr, &data, length), StatusNullPointer);
        EXPECT_EQ(VecCopy32f(&data, nullptr, length), StatusNullPointer);
        EXPECT_EQ(VecCopy32f(&other, &data, length), StatusSizeError);
        EXPECT_EQ(VecMulC32fInPlace(0.0f, nullptr, length), StatusNullPointer);
        EXPECT_EQ(VecMulC32fInPlace(0.0f, &data, length), StatusSizeError);
        EXPECT_EQ(VecMulC32fInPlace(1.0f, &data, length), StatusSizeError);
        EXPECT_EQ(VecAddC32fInPlace(1.0f, nullptr, length), StatusNullPointer);
        EXPECT_EQ(VecAddC32fInPlace(kNaN, &data, length), StatusSizeError);
    }
    EXPECT_EQ(data, 7.0f);
}

// What the double sum or product rounded to float gives, over all pairs of bit patterns alike.
TEST(Vector, ArithmeticIsThePlainForm) {
    for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
        test::Random random(seed);
        const std::int32_t length = random.Length();
        const float value = AnyFloats(random, 1)[0];
        const std::vector<float> data = AnyFloats(random, static_cast<std::size_t>(length));

        for (const bool multiply : {false, true}) {
            std::vector<float> expected = data, actual = data;
            (multiply ? reference::VecMulC32fInPlace : reference::VecAddC32fInPlace)(value, expected.data(),
                                                                                     length);
            (multiply ? VecMulC32fInPlace : VecAddC32fInPlace)(value, actual.data(), length);
            ASSERT_TRUE(test::SameBytes(test::AsBytes(expected), test::AsBytes(actual)))
                << "seed " << seed << " multiply " << multiply << std::hex << " value 0x"
                << test::BitsOf(value);
        }
    }
}

// Sums whose exact value lies at or next to a tie between floats, where rounding twice would show.
TEST(Vector, AdditionIsThePlainFormNextToTies) {
    for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
        test::Random random(seed);
        const std::uint32_t exponent = 100 + random.Bits() % 60;
        const float value = test::FloatOf((exponent << 23) | (random.Bits() & 0x7FFFFF));
        std::vector<std::uint32_t> bits(37);
        for (std::uint32_t& pattern : bits) {
            const std::uint32_t smaller = exponent - static_cast<std::uint32_t>(random.Between(22, 32));
            pattern =
                (random.Bits() & 0x80000000) | (smaller << 23) | (random.OneIn(2) ? random.Bits() & 3 : 0);
        }
        std::vector<float> expected = OfBits(bits), actual = expected;

        reference::VecAddC32fInPlace(value, expected.data(), 37);
        VecAddC32fInPlace(value, actual.data(), 37);

        ASSERT_TRUE(test::SameBytes(test::AsBytes(expected), test::AsBytes(actual))) << "seed " << seed;
    }
}

} // namespace
