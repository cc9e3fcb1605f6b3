#include "geometry/GammaLookup.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace z3d::geometry {
namespace {

using Table = std::array<std::uint8_t, 256>;

Table RandomTable(unsigned seed) {
    std::mt19937 random(seed);
    Table table;
    for (std::uint8_t& entry : table)
        entry = static_cast<std::uint8_t>(random());
    return table;
}

TEST(AdjustGamma, InterpolatesBetweenNeighbours) {
    Table table{};
    table[10] = 100;
    table[11] = 104;

    EXPECT_EQ(AdjustGamma(table.data(), 10.25f), 101);
    EXPECT_EQ(AdjustGamma(table.data(), 10.0f), 100);
    EXPECT_EQ(AdjustGamma(table.data(), 11.0f), 104);
    EXPECT_EQ(AdjustGamma(table.data(), 11.5f), 52);
}

TEST(AdjustGamma, DropsTheFraction) {
    Table table{};
    table[11] = 1;

    EXPECT_EQ(AdjustGamma(table.data(), 10.9f), 0);
    EXPECT_EQ(AdjustGamma(table.data(), 11.1f), 0);
}

TEST(AdjustGamma, HoldsTheLevelToTheTable) {
    Table table{};
    table[0] = 7;
    table[37] = 99;
    table[255] = 200;
    const float infinity = std::numeric_limits<float>::infinity();

    for (const float below : {-3.0f, -0.0f, 0.0f, -1e-45f, -3e38f, -infinity}) {
        EXPECT_EQ(AdjustGamma(table.data(), below), 7) << below;
    }
    for (const float above : {255.0f, 255.00002f, 300.0f, 3e38f, infinity}) {
        EXPECT_EQ(AdjustGamma(table.data(), above), 200) << above;
    }
    EXPECT_EQ(AdjustGamma(table.data(), 37.0f), 99);
}

TEST(AdjustGamma, TakesNaNAsZero) {
    Table table = RandomTable(61);
    table[0] = 7;

    EXPECT_EQ(AdjustGamma(table.data(), std::numeric_limits<float>::quiet_NaN()), 7);
    EXPECT_EQ(AdjustGamma(table.data(), -std::numeric_limits<float>::quiet_NaN()), 7);
}

// With 16 binary places a level, both weights and the sum are exact, so integers tell the whole truth.
TEST(AdjustGamma, IsExactForEveryLevelOfSixteenBinaryPlaces) {
    const Table table = RandomTable(62);
    for (int level = 0; level <= 255 * 65536; ++level) {
        const int fraction = level & 65535;
        const int below = table[static_cast<std::size_t>(level >> 16)];
        const int above = table[static_cast<std::size_t>(std::min(255, (level >> 16) + 1))];

        const int got = AdjustGamma(table.data(), static_cast<float>(level) / 65536.0f);

        ASSERT_EQ(got, (above * fraction + below * (65536 - fraction)) >> 16)
            << "level " << level << " / 65536";
    }
}

// Levels next to an entry: the far weight of a falling pair pulls the result just below the entry, and the
// fraction is dropped; only where the near weight rounds to 1 does the entry itself come out.
TEST(AdjustGamma, LooksUpNeighboursOfWholeLevels) {
    Table table{};
    table[0] = 200;
    table[1] = 100;
    table[254] = 50;
    table[255] = 60;

    EXPECT_EQ(AdjustGamma(table.data(), 1e-10f), 199);
    EXPECT_EQ(AdjustGamma(table.data(), 1e-17f), 200);
    EXPECT_EQ(AdjustGamma(table.data(), 1e-45f), 200);
    EXPECT_EQ(AdjustGamma(table.data(), std::nextafter(1.0f, 0.0f)), 100);
    EXPECT_EQ(AdjustGamma(table.data(), std::nextafter(1.0f, 2.0f)), 99);
    EXPECT_EQ(AdjustGamma(table.data(), std::nextafter(255.0f, 0.0f)), 59);
}

TEST(AdjustGamma, StaysWithinTheTwoNeighboursForAnyBits) {
    const Table table = RandomTable(63);
    std::mt19937 random(64);
    for (int i = 0; i < 1000000; ++i) {
        const float level = std::bit_cast<float>(static_cast<std::uint32_t>(random()));

        const int got = AdjustGamma(table.data(), level);

        const float held = std::isnan(level) ? 0.0f : std::clamp(level, 0.0f, 255.0f);
        const int below = table[static_cast<std::size_t>(std::floor(held))];
        const int above = table[static_cast<std::size_t>(std::ceil(held))];
        ASSERT_TRUE(got >= std::min(below, above) && got <= std::max(below, above))
            << "seed 64, index " << i << ", level " << level;
    }
}

TEST(AdjustGamma, IsZeroWithoutATable) { EXPECT_EQ(AdjustGamma(nullptr, 37.0f), 0); }

} // namespace
} // namespace z3d::geometry
