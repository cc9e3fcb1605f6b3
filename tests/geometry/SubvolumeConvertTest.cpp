#include "geometry/SubvolumeConvert.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <random>

namespace z3d::geometry {
namespace {

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

TEST(SubvolumeConvert, RoundsDownOrUp) {
    EXPECT_EQ(SubvolumeConvert(5, 100, 300, 0), 1);
    EXPECT_EQ(SubvolumeConvert(5, 100, 300, 1), 2);
    EXPECT_EQ(SubvolumeConvert(5, 100, 300, 32767), 2);
    EXPECT_EQ(SubvolumeConvert(5, 100, 300, -1), 1);
    EXPECT_EQ(SubvolumeConvert(5, 100, 300, -32768), 1);
    EXPECT_EQ(SubvolumeConvert(6, 100, 300, 1), 2);
}

TEST(SubvolumeConvert, NeverGivesLessThanOne) {
    EXPECT_EQ(SubvolumeConvert(0, 100, 300, 0), 1);
    EXPECT_EQ(SubvolumeConvert(2, 100, 300, 0), 1);
    EXPECT_EQ(SubvolumeConvert(-50, 100, 300, 1), 1);
    EXPECT_EQ(SubvolumeConvert(50, 100, -300, 1), 1);
}

TEST(SubvolumeConvert, NeverGivesMoreThanTheNewScale) {
    EXPECT_EQ(SubvolumeConvert(400, 100, 300, 1), 100);
    EXPECT_EQ(SubvolumeConvert(300, 100, 300, 0), 100);
    EXPECT_EQ(SubvolumeConvert(301, 100, 300, 0), 100);
    EXPECT_EQ(SubvolumeConvert(302, 100, 300, 1), 100);
}

// A number below 1 gives 1 even where the new scale is smaller still.
TEST(SubvolumeConvert, LooksAtOneBeforeTheNewScale) {
    EXPECT_EQ(SubvolumeConvert(7, 0, 3, 1), 1);
    EXPECT_EQ(SubvolumeConvert(7, -5, 3, 0), 1);
}

TEST(SubvolumeConvert, GivesTheLowSixteenBitsOfASmallerNewScale) {
    EXPECT_EQ(SubvolumeConvert(-5, -3, 1, 0), -3);
    EXPECT_EQ(SubvolumeConvert(-1, -70000, 1, 0), -4464);
    EXPECT_EQ(SubvolumeConvert(-1, -65436, 16, 0), 100);
}

TEST(SubvolumeConvert, WrapsAt16BitsBeforeTheLimits) {
    EXPECT_EQ(SubvolumeConvert(70000, 100000, 100000, 0), 4464);
    EXPECT_EQ(SubvolumeConvert(40000, 100000, 100000, 0), 1);
    EXPECT_EQ(SubvolumeConvert(32767, 40000, 40000, 0), 32767);
    EXPECT_EQ(SubvolumeConvert(32768, 40000, 40000, 0), 1);
    EXPECT_EQ(SubvolumeConvert(65537, 65537, 65537, 0), 1);
    EXPECT_EQ(SubvolumeConvert(65538, 100, 100, 0), 2);
    EXPECT_EQ(SubvolumeConvert(65536 + 200, 100, 100, 0), 100);
}

// The whole number may need 62 bits; its low 16 count, not those of a number cut to 32 bits.
TEST(SubvolumeConvert, WrapsTheWholeNumber) {
    EXPECT_EQ(SubvolumeConvert(1000003, 1000033, 1, 0), 24931); // 1000036000099
    EXPECT_EQ(SubvolumeConvert(123456789, 98765, 7, 0), 1);     // 1741887109369.3: low 16 bits -1799
    EXPECT_EQ(SubvolumeConvert(kMost, kMost, 65537, 0), 16384); // 70367670386688.75
    EXPECT_EQ(SubvolumeConvert(kMost, kMost, 65537, 1), 16385);
    EXPECT_EQ(SubvolumeConvert(kLeast, kMost, -5, 0), 13056); // 922337203255980800 after rounding
    EXPECT_EQ(SubvolumeConvert(kLeast, kLeast, 1, 0), 1);     // 2^62
}

// 134217731^2 = 18014399314788361 is odd and has 55 bits: the double product ends in 8, not in 9. The other
// two quotients are 3787361422222328.62 and 1214982747797759.877, to be rounded to steps of a half and of a
// quarter: with the product rounded too, the first moves up to the next whole number and the second stays
// below it.
TEST(SubvolumeConvert, RoundsTheProductBeforeTheQuotient) {
    EXPECT_EQ(SubvolumeConvert(134217731, 134217731, 1, 0), 8);
    EXPECT_EQ(SubvolumeConvert(2016845816, 1064748683, 567, 0), 9209);
    EXPECT_EQ(SubvolumeConvert(259609209, 1595895302, 341, 0), 14591);
}

TEST(SubvolumeConvert, GivesOneForAnOldScaleOfZero) {
    for (const std::int32_t value : {0, 1, -1, kMost, kLeast}) {
        EXPECT_EQ(SubvolumeConvert(value, 100, 0, 0), 1);
        EXPECT_EQ(SubvolumeConvert(value, -100, 0, 1), 1);
    }
}

// The plain form in integers; the double quotient of a product below 2^53 never rounds across a whole number.
std::int16_t InIntegers(std::int64_t product, std::int32_t newScale, std::int32_t oldScale, bool up) {
    std::int64_t whole = product / oldScale;
    const bool exact = whole * oldScale == product;
    const bool positive = (product < 0) == (oldScale < 0);
    if (!exact && up == positive) whole += up ? 1 : -1;
    const auto low = static_cast<std::int16_t>(whole & 0xFFFF);
    if (low < 1) return 1;
    return low > newScale ? static_cast<std::int16_t>(newScale & 0xFFFF) : low;
}

// Integers of every magnitude, both signs.
std::int32_t AnyInteger(std::mt19937& random) {
    const auto bits = static_cast<std::int32_t>(random());
    return bits >> (random() % 32);
}

TEST(SubvolumeConvert, IsExactWhereTheProductIs) {
    std::mt19937 random(71);
    int compared = 0;
    for (int i = 0; i < 2000000; ++i) {
        const std::int32_t value = AnyInteger(random), newScale = AnyInteger(random),
                           oldScale = AnyInteger(random);
        const auto roundUp = static_cast<std::int16_t>(random());
        const std::int64_t product = static_cast<std::int64_t>(value) * newScale;

        const std::int16_t got = SubvolumeConvert(value, newScale, oldScale, roundUp);

        if (oldScale == 0 || std::llabs(product) >= std::int64_t{1} << 53) continue;
        ++compared;
        ASSERT_EQ(got, InIntegers(product, newScale, oldScale, roundUp > 0))
            << "seed 71, index " << i << ": " << value << ", " << newScale << ", " << oldScale << ", "
            << roundUp;
    }
    EXPECT_GT(compared, 1000000);
}

TEST(SubvolumeConvert, IsExactForEverySmallCase) {
    for (int value = -40; value <= 80; ++value) {
        for (int newScale = -20; newScale <= 60; ++newScale) {
            for (int oldScale = -20; oldScale <= 60; ++oldScale) {
                if (oldScale == 0) continue;
                ASSERT_EQ(SubvolumeConvert(value, newScale, oldScale, 0),
                          InIntegers(value * newScale, newScale, oldScale, false));
                ASSERT_EQ(SubvolumeConvert(value, newScale, oldScale, 1),
                          InIntegers(value * newScale, newScale, oldScale, true));
            }
        }
    }
}

} // namespace
} // namespace z3d::geometry
