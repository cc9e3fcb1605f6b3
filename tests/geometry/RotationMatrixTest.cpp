#include "geometry/RotationMatrix.h"

#include "geometry/Bits.h"
#include "geometry/Orders.h"
#include "geometry/Trigonometry.h"
#include "reference/PlainRotation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace z3d::geometry {
namespace {

using reference::ElementaryRotation;
using reference::LargestDifference;
using reference::Matrix;
using reference::Product;
using test::FromBits;
using test::kXYZ;
using test::kYZX;
using test::kZXY;
using test::Order;
using test::Rotate;
using test::SameBits;

constexpr Matrix kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};

::testing::AssertionResult HasBits(const Matrix& got, const std::array<std::uint64_t, 9>& bits) {
    Matrix want;
    std::transform(bits.begin(), bits.end(), want.begin(), FromBits);
    return SameBits(got.data(), want.data(), 9);
}

TEST(CreateRotateMatrix, GivesTheIdentityForZeroAnglesInEveryOrder) {
    for (std::int16_t i = 0; i < 27; ++i) {
        const Order order = {static_cast<std::int16_t>(i / 9), static_cast<std::int16_t>(i / 3 % 3),
                             static_cast<std::int16_t>(i % 3)};

        EXPECT_TRUE(SameBits(Rotate(order, 0, 0, 0).data(), kIdentity.data(), 9)) << "order " << i;
        EXPECT_TRUE(SameBits(Rotate(order, -0.0f, -0.0f, -0.0f).data(), kIdentity.data(), 9))
            << "order " << i;
    }
}

TEST(CreateRotateMatrix, TurnsZTowardsMinusXForAPositiveYAngle) {
    const double cosine = FromBits(0x3CDD1A62633145C0); // 1.6e-15: the constant falls short of a right angle
    const Matrix want = {cosine, 0, -1, 0, 1, 0, 1, 0, cosine};

    EXPECT_TRUE(SameBits(Rotate(kXYZ, 0, 90, 0).data(), want.data(), 9));
}

TEST(CreateRotateMatrix, TurnsYTowardsZForAPositiveXAngle) {
    const double cosine = FromBits(0x3CDD1A62633145C0);
    const Matrix want = {1, 0, 0, 0, cosine, -1, 0, 1, cosine};

    EXPECT_TRUE(SameBits(Rotate(kXYZ, 90, 0, 0).data(), want.data(), 9));
}

TEST(CreateRotateMatrix, TurnsXTowardsYForAPositiveZAngle) {
    const double cosine = FromBits(0x3CDD1A62633145C0);
    const Matrix want = {cosine, -1, 0, 1, cosine, 0, 0, 0, 1};

    EXPECT_TRUE(SameBits(Rotate(kXYZ, 0, 0, 90).data(), want.data(), 9));
}

// Computed apart with 90-digit sines and cosines and IEEE double products.
TEST(CreateRotateMatrix, GivesTheSameBitsInEveryBuild) {
    EXPECT_TRUE(
        HasBits(Rotate(kXYZ, 30, 40, 50), {0x3FDF838B8C811C26, 0xBFE2C7434FC16E70, 0xBFE491B7523C1618,
                                           0x3FDD3CA316879080, 0x3FE9B121540ACC06, 0xBFD8836FA2CF5037,
                                           0x3FE7B4FC7F960A66, 0xBFBAE3EE8152A210, 0x3FE53AAFE363110E}));
    EXPECT_TRUE(HasBits(Rotate(kZXY, -75.5f, 123.25f, 0.1f),
                        {0xBFE1972FFB712977, 0xBF3CA390A671DA6D, 0xBFEABB4190405667, 0x3FE9E0CA720F62F6,
                         0x3FD0063840C64BFE, 0xBFE1087FF7861CE7, 0x3FCACD450495DB48, 0xBFEEFB10C2A3F40B,
                         0xBFC192720A3B908D}));
    EXPECT_TRUE(
        HasBits(Rotate(kYZX, 90, 45, 180), {0xBFE6A09E667F3BD2, 0xBFE6A09E667F3BC7, 0x3CD494379F9F70D8,
                                            0x3CED1A62633145C0, 0xBCDD1A62633145C0, 0x3FF0000000000000,
                                            0xBFE6A09E667F3BC7, 0x3FE6A09E667F3BD2, 0x3CEEDE536F6F292B}));
}

TEST(CreateRotateMatrix, MultipliesARepeatedAxisInTwice) {
    EXPECT_TRUE(
        HasBits(Rotate({0, 0, 1}, 10, 20, 30), {0x3FEE11F642522D1D, 0x0000000000000000, 0xBFD5E3A8748A0BEF,
                                                0xBFBDF24174C2BF0A, 0x3FEE11F642522D1D, 0xBFD491B7523C1618,
                                                0x3FD491B7523C1618, 0x3FD5E3A8748A0BEF, 0x3FEC41B7D167A81F}));
}

TEST(CreateRotateMatrix, IsTheProductInTheOrderGiven) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> angle(-720.0f, 720.0f);
    std::uniform_int_distribution<int> axis(0, 2);
    for (int i = 0; i < 20000; ++i) {
        const int first = axis(random), second = axis(random), third = axis(random);
        const std::array<float, 3> angles = {angle(random), angle(random), angle(random)};
        const auto factor = [&](int which) {
            return ElementaryRotation(which, angles[static_cast<std::size_t>(which)]);
        };

        const Matrix got = Rotate({static_cast<std::int16_t>(first), static_cast<std::int16_t>(second),
                                   static_cast<std::int16_t>(third)},
                                  angles[0], angles[1], angles[2]);

        const Matrix want = Product(Product(factor(first), factor(second)), factor(third));
        ASSERT_TRUE(SameBits(got.data(), want.data(), 9))
            << "seed 11, index " << i << ", order " << first << second << third;
    }
}

TEST(CreateRotateMatrix, DependsOnTheOrder) {
    EXPECT_GT(LargestDifference(Rotate(kXYZ, 30, 40, 50), Rotate({2, 1, 0}, 30, 40, 50)), 0.1);
    EXPECT_GT(LargestDifference(Rotate(kXYZ, 30, 40, 50), Rotate(kZXY, 30, 40, 50)), 0.1);
}

// The columns that the extraction of angles reads back; each element is a single product.
TEST(CreateRotateMatrix, KeepsTwoAnglesInOneColumnOfACyclicOrder) {
    const auto of = [](float degrees) {
        return SineAndCosine(static_cast<double>(degrees) * 0.017453292519943278);
    };
    const SineCosine x = of(20), y = of(-35), z = of(110);

    const Matrix xyz = Rotate(kXYZ, 20, -35, 110);
    const Matrix zxy = Rotate(kZXY, 20, -35, 110);
    const Matrix yzx = Rotate(kYZX, 20, -35, 110);

    const double got[] = {xyz[2], xyz[5], xyz[8], zxy[1], zxy[4], zxy[7], yzx[0], yzx[3], yzx[6]};
    const double want[] = {-y.sine,
                           -x.sine * y.cosine,
                           x.cosine * y.cosine,
                           -z.sine * x.cosine,
                           z.cosine * x.cosine,
                           x.sine,
                           y.cosine * z.cosine,
                           z.sine,
                           y.sine * z.cosine};
    EXPECT_TRUE(SameBits(got, want, 9));
}

// The constant is 1e-15 short of pi/180, so a turn of 360 degrees is 6e-15 radians short.
TEST(CreateRotateMatrix, RepeatsEvery360Degrees) {
    for (const float turns : {-10.0f, -2.0f, -1.0f, 1.0f, 2.0f, 10.0f}) {
        const float extra = 360.0f * turns;

        const Matrix turned = Rotate(kXYZ, 30 + extra, 40 + extra, 50 + extra);

        EXPECT_LT(LargestDifference(turned, Rotate(kXYZ, 30, 40, 50)), 3e-13) << turns << " turns";
    }
}

TEST(CreateRotateMatrix, IsOrthonormalForAnyFiniteAngles) {
    std::mt19937 random(12);
    std::uniform_real_distribution<float> mantissa(-1.0f, 1.0f);
    std::uniform_int_distribution<int> exponent(-40, 127);
    for (int i = 0; i < 3000; ++i) {
        const auto angle = [&] { return std::ldexp(mantissa(random), exponent(random)); };

        const Matrix m = Rotate(kZXY, angle(), angle(), angle());

        const Matrix transposed = {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]};
        ASSERT_LT(LargestDifference(Product(m, transposed), kIdentity), 2e-15) << "seed 12, index " << i;
    }
}

TEST(CreateRotateMatrix, TakesAxisIndexesOutsideTheThreeAsTheIdentity) {
    for (const std::int16_t axis : std::to_array<std::int16_t>({-32768, -3, -1, 3, 4, 256, 32767})) {
        EXPECT_TRUE(
            SameBits(Rotate({axis, 1, axis}, 30, 40, 50).data(), Rotate({3, 3, 1}, 0, 40, 0).data(), 9));
        EXPECT_TRUE(SameBits(Rotate({axis, axis, axis}, 30, 40, 50).data(), kIdentity.data(), 9));
    }
}

TEST(CreateRotateMatrix, GivesNoNumbersForAnglesThatAreNotFinite) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float angle : {infinity, -infinity, nan}) {
        EXPECT_TRUE(std::isnan(Rotate(kXYZ, angle, 0, 0)[4]));
        EXPECT_TRUE(std::isnan(Rotate(kXYZ, 0, angle, 0)[0]));
        EXPECT_TRUE(std::isnan(Rotate(kXYZ, 0, 0, angle)[0]));
    }
}

TEST(CreateRotateMatrix, WritesNineDoublesAndNoMore) {
    std::array<double, 11> block;
    block.fill(-777.0);

    CreateRotateMatrix(&block[1], kXYZ.data(), 30, 40, 50);

    EXPECT_EQ(block[0], -777.0);
    EXPECT_EQ(block[10], -777.0);
    EXPECT_EQ(std::count(block.begin(), block.end(), -777.0), 2);
}

TEST(CreateRotateMatrix, DoesNothingWithANullPointer) {
    Matrix matrix;
    matrix.fill(-777.0);

    CreateRotateMatrix(nullptr, kXYZ.data(), 30, 40, 50);
    CreateRotateMatrix(matrix.data(), nullptr, 30, 40, 50);

    EXPECT_EQ(std::count(matrix.begin(), matrix.end(), -777.0), 9);
}

} // namespace
} // namespace z3d::geometry
