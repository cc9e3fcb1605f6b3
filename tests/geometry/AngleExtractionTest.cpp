#include "geometry/AngleExtraction.h"

#include "geometry/Bits.h"
#include "geometry/Orders.h"
#include "geometry/RotationMatrix.h"
#include "reference/PlainAngles.h"
#include "support/SpecialValues.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace z3d::geometry {
namespace {

using reference::AxisAngles;
using reference::Matrix;
using test::BitsOf;
using test::FromBits;
using test::kNaN;
using test::kXYZ;
using test::kYZX;
using test::kZXY;
using test::Rotate;
using test::SameBits;

constexpr float kUntouched = -777.0f;

using Extract = void (*)(const double*, float*, float*, float*);

AxisAngles From(Extract extract, const Matrix& matrix) {
    AxisAngles angles = {kUntouched, kUntouched, kUntouched};
    extract(matrix.data(), &angles.x, &angles.y, &angles.z);
    return angles;
}

// To the last bit, but one NaN is as good as another.
template <class Float>
bool Agree(Float a, Float b) {
    return BitsOf(a) == BitsOf(b) || (std::isnan(a) && std::isnan(b));
}

::testing::AssertionResult SameAngles(const AxisAngles& got, const AxisAngles& want) {
    if (Agree(got.x, want.x) && Agree(got.y, want.y) && Agree(got.z, want.z))
        return ::testing::AssertionSuccess();
    const float gots[] = {got.x, got.y, got.z};
    const float wants[] = {want.x, want.y, want.z};
    return SameBits(gots, wants, 3);
}

TEST(ThreeAngles, AreZeroForTheIdentity) {
    const Matrix identity = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    const AxisAngles zero = {0, 0, 0};

    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, identity), zero));
    EXPECT_TRUE(SameAngles(From(GetAngleZXY, identity), zero));
    EXPECT_TRUE(SameAngles(From(GetAngleYZX, identity), zero));
}

TEST(ThreeAngles, ComeBackFromTheirOwnOrder) {
    const AxisAngles angles = {30, 40, 50};

    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, 30, 40, 50)), angles));
    EXPECT_TRUE(SameAngles(From(GetAngleZXY, Rotate(kZXY, 30, 40, 50)), angles));
    EXPECT_TRUE(SameAngles(From(GetAngleYZX, Rotate(kYZX, 30, 40, 50)), angles));
}

// Computed apart, in doubles with 90-digit sines and arc sines.
TEST(ThreeAngles, HaveTheSameBitsInEveryBuild) {
    const Matrix xyz = Rotate(kXYZ, -75.5f, 123.25f, 0.1f);
    const Matrix zxy = Rotate(kZXY, 30, 40, 50);
    const Matrix yzx = Rotate(kYZX, 12.3f, -45.6f, 78.9f);

    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, xyz), {104.5f, 56.75f, -179.89999389648438f}));
    EXPECT_TRUE(
        SameAngles(From(GetAngleZXY, xyz), {-75.58352661132812f, 123.46324920654297f, -0.2202264964580536f}));
    EXPECT_TRUE(
        SameAngles(From(GetAngleYZX, xyz), {64.87272644042969f, 159.25274658203125f, 54.10416030883789f}));
    EXPECT_TRUE(
        SameAngles(From(GetAngleXYZ, zxy), {48.06989669799805f, 6.878474712371826f, 41.93010711669922f}));
    EXPECT_TRUE(
        SameAngles(From(GetAngleYZX, zxy), {52.99549865722656f, 37.00450134277344f, 22.348310470581055f}));
    EXPECT_TRUE(
        SameAngles(From(GetAngleXYZ, yzx), {4.389875888824463f, -57.60060501098633f, 75.44007873535156f}));
    EXPECT_TRUE(
        SameAngles(From(GetAngleZXY, yzx), {56.51837921142578f, -14.4382905960083f, 70.06401824951172f}));
}

// At +90 the last axis stands where the negative first one stood, at -90 where the first one stood: the turns
// subtract or add.
TEST(ThreeAngles, PutTheWholeTurnIntoTheLastAxisAtThePole) {
    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, 30, 90, 50)), {0, 90, 20}));
    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, 30, -90, 50)), {0, -90, 80}));
    EXPECT_TRUE(SameAngles(From(GetAngleZXY, Rotate(kZXY, 90, 50, 30)), {90, 20, 0}));
    EXPECT_TRUE(SameAngles(From(GetAngleZXY, Rotate(kZXY, -90, 50, 30)), {-90, 80, 0}));
    EXPECT_TRUE(SameAngles(From(GetAngleYZX, Rotate(kYZX, 50, 30, 90)), {20, 0, 90}));
    EXPECT_TRUE(SameAngles(From(GetAngleYZX, Rotate(kYZX, 50, 30, -90)), {80, 0, -90}));
}

TEST(ThreeAngles, ReportAHalfTurnAsPlus180) {
    for (const float half : {180.0f, -180.0f}) {
        EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, half, 0, 0)), {180, 0, 0}));
        EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, 0, 0, half)), {0, 0, 180}));
        EXPECT_TRUE(SameAngles(From(GetAngleZXY, Rotate(kZXY, 0, half, 0)), {0, 180, 0}));
        EXPECT_TRUE(SameAngles(From(GetAngleYZX, Rotate(kYZX, 0, half, 0)), {0, 180, 0}));
    }
}

TEST(ThreeAngles, SnapToZeroBelowAThousandthOfADegree) {
    const float below = 0.000999f;
    const float above = 0.001001f;

    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, 10, below, 20)), {10, 0, 20}));
    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, 10, -below, 20)), {10, 0, 20}));
    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, below, 0, 20)), {0, 0, 20}));
    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, 10, 20, -below)), {10, 20, 0}));
    EXPECT_TRUE(SameAngles(From(GetAngleXYZ, Rotate(kXYZ, above, above, -above)), {above, above, -above}));
}

// A component below 0.00001 counts as zero: an angle so close to a right angle becomes that right angle.
TEST(ThreeAngles, SnapToRightAnglesWithinTheZeroComponent) {
    for (const float right : {-90.0f, 90.0f, 180.0f}) {
        for (const float sign : {1.0f, -1.0f}) {
            const float inside = right + sign * 0.0005f;
            const float outside = right - std::copysign(0.0006f, right);

            EXPECT_TRUE(SameBits(From(GetAngleXYZ, Rotate(kXYZ, inside, 10, 0)).x, right));
            EXPECT_TRUE(SameBits(From(GetAngleXYZ, Rotate(kXYZ, 20, 10, inside)).z, right));
            EXPECT_TRUE(SameBits(From(GetAngleXYZ, Rotate(kXYZ, outside, 10, 0)).x, outside));
            EXPECT_TRUE(SameBits(From(GetAngleXYZ, Rotate(kXYZ, 20, 10, outside)).z, outside));
        }
    }
}

TEST(TwoAngles, MoveToThePoleExactlyAtTheThreshold) {
    const double atThreshold = 1.0 - 0.00001;
    const double before = std::nextafter(atThreshold, 0.0);
    for (const float sign : {1.0f, -1.0f}) {
        Matrix rebuilt;
        float x = 0, y = 0;

        GetAngleXY(rebuilt.data(), -sign * before, -0.004f, 0.002f, &x, &y, 0);
        EXPECT_TRUE(SameBits(y, sign * 89.74376678466797f));
        EXPECT_NE(x, 0.0f);

        GetAngleXY(rebuilt.data(), -sign * atThreshold, -0.004f, 0.002f, &x, &y, 0);
        EXPECT_TRUE(SameBits(y, sign * 90.0f));
        EXPECT_TRUE(SameBits(x, 0.0f));
    }
}

TEST(TwoAngles, StayAtThePoleJustBeyondOneAndAreNoNumbersFarther) {
    const double outside = FromBits(0x3FF0000A7C5AC472); // 1.00001, whose distance from 1 exceeds 0.00001
    const double inside = std::nextafter(outside, 1.0);
    Matrix rebuilt;
    float x = 0, z = 0;

    GetAngleZX(rebuilt.data(), 0, 0, inside, &x, &z, 0);
    EXPECT_TRUE(x == 90.0f && z == 0.0f);
    GetAngleZX(rebuilt.data(), 0, 0, -inside, &x, &z, 0);
    EXPECT_TRUE(x == -90.0f && z == 0.0f);
    GetAngleZX(rebuilt.data(), 0, 1, outside, &x, &z, 0);
    EXPECT_TRUE(std::isnan(x) && std::isnan(z) && std::isnan(rebuilt[0]));
}

// A column of a rotation is never so long that its direction lies this close to a half turn.
TEST(TwoAngles, AreMinus180JustBeyondAHalfTurnForElementsOfNoRotation) {
    Matrix rebuilt;
    float first = 0, second = 0;

    GetAngleXY(rebuilt.data(), 0, 2e-5, -1e4, &first, &second, 0);
    EXPECT_TRUE(first == -180.0f && second == 0.0f);
    GetAngleZX(rebuilt.data(), 2e-5, -1e4, 0, &first, &second, 0);
    EXPECT_TRUE(first == 0.0f && second == -180.0f);
    GetAngleYZ(rebuilt.data(), -1e4, 0, -2e-5, &first, &second, 0);
    EXPECT_TRUE(first == -180.0f && second == 0.0f);
}

TEST(TwoAngles, FallToThePoleWithoutANumberToTest) {
    Matrix rebuilt;
    float first = 0, second = 0;

    GetAngleXY(rebuilt.data(), kNaN, 0.3, 0.4, &first, &second, 0);
    EXPECT_TRUE(first == 0.0f && second == 90.0f);
    GetAngleZX(rebuilt.data(), 0.3, 0.4, kNaN, &first, &second, 0);
    EXPECT_TRUE(first == -90.0f && second == 0.0f);
    GetAngleYZ(rebuilt.data(), 0.3, kNaN, 0.4, &first, &second, 0);
    EXPECT_TRUE(first == 0.0f && second == -90.0f);
}

TEST(TwoAngles, RebuildTheMatrixWithTheCallersThirdAngle) {
    Matrix got;
    float a = 0, b = 0;

    const Matrix xyz = Rotate(kXYZ, 30, 40, 50);
    GetAngleXY(got.data(), xyz[2], xyz[5], xyz[8], &a, &b, -17.25f);
    EXPECT_TRUE(SameBits(got.data(), Rotate(kXYZ, 30, 40, -17.25f).data(), 9));

    const Matrix zxy = Rotate(kZXY, 30, 40, 50);
    GetAngleZX(got.data(), zxy[1], zxy[4], zxy[7], &a, &b, -17.25f);
    EXPECT_TRUE(SameBits(got.data(), Rotate(kZXY, 30, -17.25f, 50).data(), 9));

    const Matrix yzx = Rotate(kYZX, 30, 40, 50);
    GetAngleYZ(got.data(), yzx[0], yzx[3], yzx[6], &a, &b, -17.25f);
    EXPECT_TRUE(SameBits(got.data(), Rotate(kYZX, -17.25f, 40, 50).data(), 9));
}

TEST(TwoAngles, RebuildFromTheSnappedAngles) {
    const Matrix source = Rotate(kXYZ, 90.0005f, 0.0009f, 0);
    Matrix got;
    float x = 0, y = 0;

    GetAngleXY(got.data(), source[2], source[5], source[8], &x, &y, 5);

    EXPECT_TRUE(SameBits(got.data(), Rotate(kXYZ, 90, 0, 5).data(), 9));
}

// Elements of any kind: rotations, noise, values next to the thresholds, and what is no number at all.
double AnyElement(std::mt19937& random) {
    static const double special[] = {
        0,       -0.0,     1,     -1,     0.99999, -0.99999, 1.00001,
        0.00001, -0.00001, 0.004, 1e-300, 1e200,   -1e308,   std::numeric_limits<double>::infinity(),
        kNaN};
    const double noise = std::uniform_real_distribution<double>(-1.05, 1.05)(random);
    if (random() % 4 != 0) return noise;
    const double value = special[random() % std::size(special)];
    return random() % 2 ? std::nextafter(value, noise) : value;
}

TEST(ThreeAngles, MatchThePlainFormForAnyElements) {
    std::mt19937 random(31);
    for (int i = 0; i < 50000; ++i) {
        SCOPED_TRACE(::testing::Message() << "seed 31, index " << i);
        Matrix m;
        for (double& element : m)
            element = AnyElement(random);

        ASSERT_TRUE(SameAngles(From(GetAngleXYZ, m), reference::PlainAngleXYZ(m)));
        ASSERT_TRUE(SameAngles(From(GetAngleZXY, m), reference::PlainAngleZXY(m)));
        ASSERT_TRUE(SameAngles(From(GetAngleYZX, m), reference::PlainAngleYZX(m)));
    }
}

TEST(TwoAngles, MatchThePlainFormForAnyElements) {
    std::mt19937 random(32);
    for (int i = 0; i < 50000; ++i) {
        SCOPED_TRACE(::testing::Message() << "seed 32, index " << i);
        const double a = AnyElement(random), b = AnyElement(random), c = AnyElement(random);
        const float third = static_cast<float>(AnyElement(random)) * 100;
        AxisAngles xy = {0, 0, third}, zx = {0, third, 0}, yz = {third, 0, 0};
        Matrix got[3], want[3];

        GetAngleXY(got[0].data(), a, b, c, &xy.x, &xy.y, third);
        GetAngleZX(got[1].data(), a, b, c, &zx.x, &zx.z, third);
        GetAngleYZ(got[2].data(), a, b, c, &yz.y, &yz.z, third);

        ASSERT_TRUE(SameAngles(xy, reference::PlainAngleXY(want[0], a, b, c, third)));
        ASSERT_TRUE(SameAngles(zx, reference::PlainAngleZX(want[1], a, b, c, third)));
        ASSERT_TRUE(SameAngles(yz, reference::PlainAngleYZ(want[2], a, b, c, third)));
        for (std::size_t k = 0; k < 27; ++k) {
            ASSERT_TRUE(Agree(got[k / 9][k % 9], want[k / 9][k % 9]))
                << "matrix " << k / 9 << ", element " << k % 9;
        }
    }
}

TEST(TwoAngles, DoNothingWithANullPointer) {
    Matrix matrix;
    matrix.fill(kUntouched);
    const Matrix untouched = matrix;
    for (const auto function : {GetAngleXY, GetAngleZX, GetAngleYZ}) {
        float angle = kUntouched;

        function(nullptr, 0.1, 0.2, 0.3, &angle, &angle, 0);
        function(matrix.data(), 0.1, 0.2, 0.3, nullptr, &angle, 0);
        function(matrix.data(), 0.1, 0.2, 0.3, &angle, nullptr, 0);

        EXPECT_EQ(angle, kUntouched);
        EXPECT_TRUE(SameBits(matrix.data(), untouched.data(), 9));
    }
}

TEST(ThreeAngles, DoNothingWithANullPointer) {
    const Matrix matrix = Rotate(kXYZ, 30, 40, 50);
    for (const auto function : {GetAngleXYZ, GetAngleZXY, GetAngleYZX}) {
        float angle = kUntouched;

        function(nullptr, &angle, &angle, &angle);
        function(matrix.data(), nullptr, &angle, &angle);
        function(matrix.data(), &angle, nullptr, &angle);
        function(matrix.data(), &angle, &angle, nullptr);

        EXPECT_EQ(angle, kUntouched);
    }
}

} // namespace
} // namespace z3d::geometry
