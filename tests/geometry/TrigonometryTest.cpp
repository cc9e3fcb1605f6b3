#include "geometry/Trigonometry.h"

#include "geometry/Bits.h"
#include "reference/WideTrigonometry.h"
#include "support/Digest.h"
#include "support/SpecialValues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace z3d::geometry {
namespace {

using reference::ErrorInUlp;
using reference::Wide;
using test::Digest;
using test::FromBits;
using test::HexOf;
using test::kInfinity;
using test::kNaN;
using test::SameBits;

constexpr double kRadiansPerDegree = 0.017453292519943278;

// The rounding to double costs half an ulp; all that happens before it may cost 0.002 of one.
constexpr double kAllowedUlp = 0.502;

::testing::AssertionResult IsAccurate(double radians) {
    const SineCosine got = SineAndCosine(radians);
    const double sineError = ErrorInUlp(got.sine, reference::WideSine(radians));
    const double cosineError = ErrorInUlp(got.cosine, reference::WideCosine(radians));
    if (sineError <= kAllowedUlp && cosineError <= kAllowedUlp) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "at " << radians << " (" << HexOf(radians) << ") sine is off by "
                                         << sineError << " ulp, cosine by " << cosineError;
}

struct PinnedAngle {
    float degrees;
    std::uint64_t sine;
    std::uint64_t cosine;
};

// The doubles nearest to the sine and cosine of the double product, computed to 90 decimal digits.
constexpr PinnedAngle kMultiplesOf15[] = {
    {0.0f, 0x0000000000000000, 0x3FF0000000000000},   {15.0f, 0x3FD0907DC193068C, 0x3FEEE8DD4748BF15},
    {30.0f, 0x3FDFFFFFFFFFFFF8, 0x3FEBB67AE8584CAD},  {45.0f, 0x3FE6A09E667F3BC7, 0x3FE6A09E667F3BD2},
    {60.0f, 0x3FEBB67AE8584CA6, 0x3FE0000000000008},  {75.0f, 0x3FEEE8DD4748BF12, 0x3FD0907DC19306A7},
    {90.0f, 0x3FF0000000000000, 0x3CDD1A62633145C0},  {105.0f, 0x3FEEE8DD4748BF19, 0xBFD0907DC193066F},
    {120.0f, 0x3FEBB67AE8584CB3, 0xBFDFFFFFFFFFFFE1}, {135.0f, 0x3FE6A09E667F3BDB, 0xBFE6A09E667F3BBE},
    {150.0f, 0x3FE0000000000014, 0xBFEBB67AE8584C9F}, {165.0f, 0x3FD0907DC19306C3, 0xBFEEE8DD4748BF0E},
    {180.0f, 0x3CED1A62633145C0, 0xBFF0000000000000}, {195.0f, 0xBFD0907DC1930653, 0xBFEEE8DD4748BF1D},
    {210.0f, 0xBFDFFFFFFFFFFFC4, 0xBFEBB67AE8584CBC}, {225.0f, 0xBFE6A09E667F3BB2, 0xBFE6A09E667F3BE7},
    {240.0f, 0xBFEBB67AE8584C98, 0xBFE000000000001F}, {255.0f, 0xBFEEE8DD4748BF0B, 0xBFD0907DC19306DC},
    {270.0f, 0xBFF0000000000000, 0xBCF4D3C9CA64F450}, {285.0f, 0xBFEEE8DD4748BF20, 0x3FD0907DC193063B},
    {300.0f, 0xBFEBB67AE8584CC2, 0x3FDFFFFFFFFFFFAE}, {315.0f, 0xBFE6A09E667F3BF0, 0x3FE6A09E667F3BA9},
    {330.0f, 0xBFE000000000002E, 0x3FEBB67AE8584C90}, {345.0f, 0xBFD0907DC19306FC, 0x3FEEE8DD4748BF06},
    {360.0f, 0xBCFD1A62633145C0, 0x3FF0000000000000},
};

TEST(SineAndCosine, AreTheNearestDoublesAtMultiplesOf15Degrees) {
    for (const PinnedAngle& pinned : kMultiplesOf15) {
        const double radians = static_cast<double>(pinned.degrees) * kRadiansPerDegree;

        const SineCosine got = SineAndCosine(radians);

        EXPECT_TRUE(SameBits(got.sine, FromBits(pinned.sine))) << "sine of " << pinned.degrees;
        EXPECT_TRUE(SameBits(got.cosine, FromBits(pinned.cosine))) << "cosine of " << pinned.degrees;
    }
}

TEST(SineAndCosine, AreAccurateForDegreesOfTwoTurnsEachWay) {
    for (int tenths = -7200; tenths <= 7200; ++tenths) {
        ASSERT_TRUE(IsAccurate(static_cast<double>(static_cast<float>(tenths) * 0.1f) * kRadiansPerDegree));
    }
}

TEST(SineAndCosine, AreAccurateForRandomAngles) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> turn(-7.0, 7.0);
    std::uniform_real_distribution<double> anywhere(-0x1p24, 0x1p24);

    for (int i = 0; i < 10000; ++i) {
        ASSERT_TRUE(IsAccurate(turn(random)));
        ASSERT_TRUE(IsAccurate(anywhere(random)));
        ASSERT_TRUE(IsAccurate(std::ldexp(turn(random), -i % 1000)));
    }
}

TEST(SineAndCosine, AreAccurateNextToRightAngles) {
    std::mt19937_64 random(2);
    std::uniform_int_distribution<int> quarters(-0x700000, 0x700000);

    for (int i = 0; i < 3000; ++i) {
        const double rightAngle = quarters(random) * 1.5707963267948966;
        ASSERT_TRUE(IsAccurate(rightAngle));
        ASSERT_TRUE(IsAccurate(std::nextafter(rightAngle, kInfinity)));
        ASSERT_TRUE(IsAccurate(std::nextafter(rightAngle, -kInfinity)));
        ASSERT_TRUE(IsAccurate(rightAngle + 0.7853981633974483));
    }
}

TEST(SineAndCosine, OfTheNegativeAngleMirrorTheSineOnly) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> anywhere(0.0, 1000.0);
    for (int i = 0; i < 10000; ++i) {
        const double radians = i == 0 ? 0.0 : anywhere(random);

        const SineCosine positive = SineAndCosine(radians);
        const SineCosine negative = SineAndCosine(-radians);

        ASSERT_TRUE(SameBits(negative.sine, -positive.sine)) << radians;
        ASSERT_TRUE(SameBits(negative.cosine, positive.cosine)) << radians;
    }
}

TEST(SineAndCosine, StayOnTheUnitCircleForHugeAngles) {
    for (const double radians : {0x1.0000001p24, 1e8, 5.9e36, -5.9e36, 1e300, 1.7976931348623157e308}) {
        const SineCosine got = SineAndCosine(radians);

        EXPECT_NEAR(got.sine * got.sine + got.cosine * got.cosine, 1.0, 1e-15) << radians;
    }
}

TEST(SineAndCosine, AreContinuousWhereTheReductionChanges) {
    const SineCosine below = SineAndCosine(0x1p24);
    const SineCosine above = SineAndCosine(std::nextafter(0x1p24, kInfinity));

    // One step of the angle there is 2^-28; the drift of the coarser reduction is a thousandth of that.
    EXPECT_NEAR(above.sine, below.sine + 0x1p-28 * below.cosine, 0x1p-38);
    EXPECT_NEAR(above.cosine, below.cosine - 0x1p-28 * below.sine, 0x1p-38);
}

TEST(SineAndCosine, AreNotNumbersForAnglesThatAreNotFinite) {
    for (const double radians : {kNaN, kInfinity, -kInfinity}) {
        const SineCosine got = SineAndCosine(radians);

        EXPECT_TRUE(std::isnan(got.sine));
        EXPECT_TRUE(std::isnan(got.cosine));
    }
}

TEST(ArcSine, IsTheNearestDoubleAtPinnedValues) {
    const std::uint64_t pinned[][2] = {
        {0x0000000000000000, 0x0000000000000000}, {0x0000000000000001, 0x0000000000000001},
        {0x3EE4F8B588E368F1, 0x3EE4F8B588E4E940}, {0x3FB999999999999A, 0x3FB9A49276037884},
        {0x3FD0000000000000, 0x3FD02BE9CE0B87CD}, {0x3FE0000000000000, 0x3FE0C152382D7366},
        {0x3FE0000000000001, 0x3FE0C152382D7367}, {0x3FE6A09E667F3BCD, 0x3FE921FB54442D19},
        {0x3FEFFFEB074A771D, 0x3FF90FA9F3695AA5}, {0x3FEFFFFFFFFFFFFF, 0x3FF921FB50442D18},
        {0x3FF0000000000000, 0x3FF921FB54442D18},
    };
    for (const auto& [sine, angle] : pinned) {
        EXPECT_TRUE(SameBits(ArcSine(FromBits(sine)), FromBits(angle)));
        EXPECT_TRUE(SameBits(ArcSine(-FromBits(sine)), -FromBits(angle)));
    }
}

// The sine grows up to pi/2, so the exact angle lies in an interval when the sines of its ends enclose the
// value. At 1 the interval would reach beyond pi/2.
::testing::AssertionResult IsAccurateArcSineOf(double sine) {
    const double angle = ArcSine(sine);
    const double ulp = std::nextafter(std::fabs(angle), kInfinity) - std::fabs(angle);
    const Wide reach = Wide{kAllowedUlp} * ulp;
    if (reference::WideSine(angle - reach) <= sine && sine <= reference::WideSine(angle + reach)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "of " << sine << " (" << HexOf(sine) << ") is " << angle << " (" << HexOf(angle) << ")";
}

TEST(ArcSine, IsAccurateForRandomValues) {
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> sines(-1.0, 1.0);
    for (int i = 0; i < 10000; ++i) {
        const double sine = sines(random);
        const double nearOne = 1.0 - std::max(0x1p-53, std::ldexp(std::fabs(sine), -i % 49));
        const double nearHalf = 0.5 + std::ldexp(sine, -2 - i % 50);

        ASSERT_TRUE(IsAccurateArcSineOf(sine)) << "index " << i;
        ASSERT_TRUE(IsAccurateArcSineOf(std::ldexp(sine, -i % 900))) << "index " << i;
        ASSERT_TRUE(IsAccurateArcSineOf(nearOne)) << "index " << i;
        ASSERT_TRUE(IsAccurateArcSineOf(nearHalf)) << "index " << i;
    }
}

TEST(ArcSine, IsNotANumberOutsideOneEachWay) {
    const double above = std::nextafter(1.0, 2.0);
    const double sines[] = {above, -above, 2.0, -1e308, kInfinity, -kInfinity, kNaN};
    for (const double sine : sines) {
        EXPECT_TRUE(std::isnan(ArcSine(sine))) << sine;
    }
}

TEST(SquareRoot, IsCorrectlyRounded) {
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> values(0.0, 4.0);
    for (int i = 0; i < 20000; ++i) {
        const double value = values(random);
        const double root = SquareRoot(value);

        const Wide halfUlp = Wide{std::nextafter(root, kInfinity) - root} / 2;
        const Wide halfUlpBelow = Wide{root - std::nextafter(root, 0.0)} / 2;
        const bool enclosed = (root - halfUlpBelow) * (root - halfUlpBelow) <= value
                              && value <= (root + halfUlp) * (root + halfUlp);

        ASSERT_TRUE(enclosed) << "index " << i << ", value " << value << ", root " << root;
    }
}

// No hand can work out this number; it is here so that two builds that differ in one bit cannot both pass.
TEST(Trigonometry, GivesTheSameBitsInEveryBuild) {
    Digest digest;
    for (int i = -50000; i <= 50000; ++i) {
        const SineCosine turn = SineAndCosine(i * 0.001);
        const SineCosine far = SineAndCosine(i * 12345.678);
        for (const double value : {turn.sine, turn.cosine, far.sine, far.cosine})
            digest.Add(value);
        digest.Add(ArcSine(i / 50000.0));
        digest.Add(SquareRoot(std::abs(i) / 3.0));
    }
    EXPECT_EQ(digest.Value(), 0x4BC2931243DB95F9u);
}

} // namespace
} // namespace z3d::geometry
