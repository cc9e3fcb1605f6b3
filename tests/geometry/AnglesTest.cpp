#include "geometry/Angles.h"

#include "geometry/Bits.h"
#include "support/SpecialValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace z3d::geometry {
namespace {

using test::FromBits;
using test::kInfinity;
using test::kNaN;
using test::SameBits;

TEST(WrapRadians, LeavesBothHalfTurnsWhereTheyAre) {
    EXPECT_TRUE(SameBits(WrapRadians(kHalfTurn), FromBits(0x400921FB54442D11)));
    EXPECT_TRUE(SameBits(WrapRadians(-kHalfTurn), FromBits(0xC00921FB54442D11)));
}

TEST(WrapRadians, CrossesOneStepBeyondAHalfTurn) {
    const double above = std::nextafter(kHalfTurn, 4.0);
    const double below = std::nextafter(kHalfTurn, 0.0);

    EXPECT_TRUE(SameBits(WrapRadians(above), -below));
    EXPECT_TRUE(SameBits(WrapRadians(-above), below));
    EXPECT_TRUE(SameBits(WrapRadians(below), below));
}

TEST(WrapRadians, SubtractsAndAddsWholeTurns) {
    EXPECT_TRUE(SameBits(WrapRadians(1.0 - kFullTurn), (1.0 - kFullTurn) + kFullTurn));
    EXPECT_TRUE(SameBits(WrapRadians(6.0), 6.0 - kFullTurn));
    EXPECT_TRUE(SameBits(WrapRadians(10.0), 10.0 - kFullTurn - kFullTurn));
    EXPECT_TRUE(SameBits(WrapRadians(-10.0), -10.0 + kFullTurn + kFullTurn));
}

// Each subtraction rounds, so a thousand of them do not give the exact remainder; a million would take long.
TEST(WrapRadians, TakesUpToAThousandTurnsOffOneByOne) {
    for (const double angle : {13.0, 500.0, 3000.0, 6283.0}) {
        double want = angle;
        while (want > kHalfTurn)
            want -= kFullTurn;

        EXPECT_TRUE(SameBits(WrapRadians(angle), want)) << angle;
        EXPECT_TRUE(SameBits(WrapRadians(-angle), -want)) << angle;
    }
    EXPECT_TRUE(SameBits(WrapRadians(6284.0), std::remainder(6284.0, kFullTurn)));
}

TEST(WrapRadians, EndsForEveryFiniteAngle) {
    std::mt19937_64 random(21);
    for (int i = 0; i < 100000; ++i) {
        const double angle = FromBits(random());
        if (!std::isfinite(angle)) continue;

        const double wrapped = WrapRadians(angle);

        ASSERT_LE(std::fabs(wrapped), kHalfTurn) << "seed 21, index " << i << ", angle " << angle;
    }
}

TEST(WrapRadians, TakesTheExactRemainderOfHugeAngles) {
    EXPECT_TRUE(SameBits(WrapRadians(1e300), std::remainder(1e300, kFullTurn)));
    EXPECT_TRUE(SameBits(WrapRadians(-1e16), std::remainder(-1e16, kFullTurn)));
}

TEST(WrapRadians, PassesAnglesThatAreNotFiniteThroughAsNaN) {
    for (const double angle : {kNaN, kInfinity, -kInfinity})
        EXPECT_TRUE(std::isnan(WrapRadians(angle)));
}

// The product is 180.00000000000003, which a plain wrap would turn into -180.
TEST(RadiansToDegrees, GivesPlusAndMinus180ForTheTwoHalfTurns) {
    EXPECT_EQ(RadiansToDegrees(kHalfTurn), 180.0);
    EXPECT_EQ(RadiansToDegrees(-kHalfTurn), -180.0);
}

TEST(RadiansToDegrees, KeepsTheSideNextToAHalfTurn) {
    const double below = std::nextafter(kHalfTurn, 0.0);
    const double above = std::nextafter(kHalfTurn, 4.0);

    EXPECT_EQ(RadiansToDegrees(below), 180.0);
    EXPECT_EQ(RadiansToDegrees(-below), -180.0);
    EXPECT_EQ(RadiansToDegrees(above), above * 57.29577951308239 - 360.0);
    EXPECT_EQ(RadiansToDegrees(-above), 360.0 - above * 57.29577951308239);
}

TEST(RadiansToDegrees, MultipliesByItsConstant) {
    EXPECT_EQ(RadiansToDegrees(kQuarterTurn), 90.00000000000001);
    EXPECT_EQ(RadiansToDegrees(-kQuarterTurn), -90.00000000000001);
    EXPECT_EQ(RadiansToDegrees(1.0), 57.29577951308239);
    EXPECT_EQ(RadiansToDegrees(-0.5), -28.647889756541195);
}

TEST(RadiansToDegrees, SnapsToZeroBelowAThousandthOfADegree) {
    const double threshold = FromBits(0x3EF24D152119346E); // the product is exactly 0.001
    const double below = std::nextafter(threshold, 0.0);

    EXPECT_EQ(RadiansToDegrees(threshold), 0.001);
    EXPECT_EQ(RadiansToDegrees(-threshold), -0.001);
    EXPECT_TRUE(SameBits(RadiansToDegrees(below), 0.0));
    EXPECT_TRUE(SameBits(RadiansToDegrees(-below), 0.0));
    EXPECT_TRUE(SameBits(RadiansToDegrees(-0.0), 0.0));
}

TEST(RadiansToDegrees, WrapsSeveralTurns) {
    EXPECT_EQ(RadiansToDegrees(4.0), 4.0 * 57.29577951308239 - 360.0);
    EXPECT_EQ(RadiansToDegrees(-4.0), -4.0 * 57.29577951308239 + 360.0);
    EXPECT_EQ(RadiansToDegrees(14.0), 14.0 * 57.29577951308239 - 360.0 - 360.0);
}

TEST(RadiansToDegrees, EndsForEveryAngle) {
    std::mt19937_64 random(22);
    for (int i = 0; i < 100000; ++i) {
        const double angle = FromBits(random());

        const double degrees = RadiansToDegrees(angle);

        const bool overflows = !std::isfinite(angle * 57.29577951308239);
        ASSERT_TRUE(overflows ? std::isnan(degrees) : std::fabs(degrees) <= 180.0)
            << "seed 22, index " << i << ", angle " << angle << ", degrees " << degrees;
    }
    EXPECT_TRUE(std::isnan(RadiansToDegrees(kNaN)));
    EXPECT_TRUE(std::isnan(RadiansToDegrees(kInfinity)));
}

struct PinnedDirection {
    double y;
    double x;
    std::uint64_t angle;
};

// Computed apart, in doubles with 90-digit arc sines. The cut half and full turns make them lopsided.
constexpr PinnedDirection kDirections[] = {
    {0, 1, 0x0000000000000000},        {1, 1, 0x3FE921FB54442D17},         {1, 0, 0x3FF921FB54442D18},
    {1, -1, 0x4002D97C7F3321CB},       {0, -1, 0x400921FB54442D11},        {-1, -1, 0xC002D97C7F3321CB},
    {-1, 0, 0xBFF921FB54442D18},       {-1, 1, 0xBFE921FB54442D18},        {3, -4, 0x4003FC176B7A8559},
    {-0.6, 0.8, 0xBFE4978FA3269EE0},   {-0.0, -1, 0x400921FB54442D11},     {-0.0, 1, 0x0000000000000000},
    {0.00001, 1, 0x3EE4F8B588E06854},  {-0.00001, -1, 0xC00921F61616CAD9}, {1, 0.00001, 0x3FF921F0D7E9615F},
    {1, -0.00001, 0x3FF92205D09EF8C3}, {-1, 0.00001, 0xBFF921F0D7E96160},  {-1, -0.00001, 0xBFF92205D09EF8C4},
};

TEST(AngleFromComponents, MatchesPinnedBitsInEveryQuadrant) {
    for (const PinnedDirection& pinned : kDirections) {
        EXPECT_TRUE(SameBits(AngleFromComponents(pinned.y, pinned.x), FromBits(pinned.angle)))
            << "y " << pinned.y << ", x " << pinned.x;
    }
}

TEST(AngleFromComponents, TakesAComponentBelowItsThresholdAsZero) {
    const double below = FromBits(0x3EE4F8B588E368F0); // the double before 0.00001

    EXPECT_TRUE(SameBits(AngleFromComponents(below, 1), 0.0));
    EXPECT_TRUE(SameBits(AngleFromComponents(-below, 1), 0.0));
    EXPECT_TRUE(SameBits(AngleFromComponents(-below, -1), kHalfTurn));
    EXPECT_TRUE(SameBits(AngleFromComponents(1, -below), FromBits(0x3FF921FB54442D18)));
    EXPECT_TRUE(SameBits(AngleFromComponents(-1, below), FromBits(0xBFF921FB54442D18)));
}

TEST(AngleFromComponents, DependsOnTheProportionOnly) {
    std::mt19937_64 random(23);
    std::uniform_real_distribution<double> component(0.001, 1.0);
    for (int i = 0; i < 10000; ++i) {
        const double y = component(random) * (i & 1 ? 1 : -1);
        const double x = component(random) * (i & 2 ? 1 : -1);

        const double small = AngleFromComponents(y / 64, x / 64);
        const double large = AngleFromComponents(y * 0x1p100, x * 0x1p100);

        ASSERT_TRUE(SameBits(small, large)) << "seed 23, index " << i;
        // The arc sine stretches the rounding of its argument, here at most a thousandfold.
        ASSERT_NEAR(small, std::atan2(y, x), 3e-13) << "seed 23, index " << i;
    }
}

TEST(AngleFromComponents, HasNoAngleForADirectionWithoutLength) {
    EXPECT_TRUE(std::isnan(AngleFromComponents(0, 0)));
    EXPECT_TRUE(std::isnan(AngleFromComponents(0.000009, -0.000009)));
}

TEST(AngleFromComponents, StaysInRangeOrNaNForHostileComponents) {
    const double values[] = {0, -0.0, 1, -1, 1e-300, 1e200, -1e308, kInfinity, -kInfinity, kNaN};
    for (const double y : values) {
        for (const double x : values) {
            const double angle = AngleFromComponents(y, x);

            const bool noNumber = std::isnan(y) || std::isnan(x);
            EXPECT_TRUE(std::isnan(angle) || (!noNumber && std::fabs(angle) <= kHalfTurn)) << y << ", " << x;
        }
    }
}

TEST(TransposeMultiply, TurnsTheLeftFactorOver) {
    const double a[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const double b[9] = {1, 0, 2, 0, 3, 0, 4, 0, 5};
    const double want[9] = {29, 12, 37, 34, 15, 44, 39, 18, 51};
    double product[9];

    TransposeMultiply(product, a, b);

    EXPECT_TRUE(SameBits(product, want, 9));
}

} // namespace
} // namespace z3d::geometry
