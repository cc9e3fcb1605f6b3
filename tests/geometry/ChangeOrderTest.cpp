#include "geometry/AngleExtraction.h"

#include "geometry/Bits.h"
#include "geometry/RotationMatrix.h"
#include "reference/PlainRotation.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace z3d::geometry {
namespace {

using reference::LargestDifference;
using reference::Matrix;
using test::SameBits;

using Order = std::array<std::int16_t, 3>;
using Angles = std::array<float, 3>;

// The cyclic order that ends in X, in Y and in Z.
constexpr Order kCyclicEndingIn[3] = {{1, 2, 0}, {2, 0, 1}, {0, 1, 2}};

Order OrderOfIndex(int index) {
    return {static_cast<std::int16_t>(index / 9), static_cast<std::int16_t>(index / 3 % 3),
            static_cast<std::int16_t>(index % 3)};
}

Matrix Rotate(const Order& order, const Angles& angles) {
    Matrix matrix;
    CreateRotateMatrix(matrix.data(), order.data(), angles[0], angles[1], angles[2]);
    return matrix;
}

Angles Change(const Order& from, const Order& to, Angles angles) {
    ChangeOrder(from.data(), to.data(), &angles[0], &angles[1], &angles[2]);
    return angles;
}

::testing::AssertionResult SameAngles(const Angles& got, const Angles& want) {
    return SameBits(got.data(), want.data(), 3);
}

TEST(ChangeOrder, LeavesTheAnglesWhenBothOrdersEndInOneAxis) {
    const Angles angles = {30, 40, 50};

    EXPECT_TRUE(SameAngles(Change({0, 1, 2}, {1, 0, 2}, angles), angles));
    EXPECT_TRUE(SameAngles(Change({0, 1, 2}, {0, 1, 2}, angles), angles));
    EXPECT_TRUE(SameAngles(Change({0, 1, 2}, {2, 2, 2}, angles), angles));
}

// Computed apart, in doubles with 90-digit sines and arc sines.
TEST(ChangeOrder, ConvertsIntoTheOrderOfTheLastAxis) {
    const Angles toY = {-6.0294976234436035f, 48.156028747558594f, 36.16328811645508f};
    const Angles toX = {25.504173278808594f, 56.38986587524414f, 27.182483673095703f};

    EXPECT_TRUE(SameAngles(Change({0, 1, 2}, {2, 0, 1}, {30, 40, 50}), toY));
    EXPECT_TRUE(SameAngles(Change({0, 1, 2}, {0, 2, 1}, {30, 40, 50}), toY));
    EXPECT_TRUE(SameAngles(Change({0, 1, 2}, {1, 2, 0}, {30, 40, 50}), toX));
    EXPECT_TRUE(SameAngles(Change({0, 1, 2}, {2, 1, 0}, {30, 40, 50}), toX));
}

TEST(ChangeOrder, UsesTheWholeSourceOrder) {
    const Angles cyclic = Change({0, 1, 2}, {2, 0, 1}, {30, 40, 50});
    const Angles swapped = Change({1, 0, 2}, {2, 0, 1}, {30, 40, 50});

    EXPECT_GT(std::fabs(cyclic[0] - swapped[0]), 1.0f);
    EXPECT_LT(LargestDifference(Rotate({2, 0, 1}, swapped), Rotate({1, 0, 2}, {30, 40, 50})), 3e-7);
}

// Every pair of the 27 triples of axes, repeated axes included; only the last axis of the target counts.
TEST(ChangeOrder, KeepsTheMatrixForEveryPairOfOrders) {
    const Angles sets[] = {
        {30, 40, 50}, {-75.5f, 123.25f, 10.1f}, {200, -310, 17}, {45, 45, 45}, {-135, 60, 180}};
    for (int pair = 0; pair < 27 * 27; ++pair) {
        const Order from = OrderOfIndex(pair / 27), to = OrderOfIndex(pair % 27);
        for (const Angles& angles : sets) {
            const Angles got = Change(from, to, angles);

            if (from[2] == to[2]) {
                ASSERT_TRUE(SameAngles(got, angles)) << "pair " << pair;
                continue;
            }
            const Matrix matrix = Rotate(kCyclicEndingIn[to[2]], got);
            ASSERT_LT(LargestDifference(matrix, Rotate(from, angles)), 5e-7) << "pair " << pair;
        }
    }
}

TEST(ChangeOrder, ComesBackFromAnotherOrder) {
    std::mt19937 random(51);
    std::uniform_real_distribution<float> angle(-80.0f, 80.0f);
    for (int i = 0; i < 10000; ++i) {
        const Order& from = kCyclicEndingIn[i % 3];
        const Order& to = kCyclicEndingIn[(i + 1 + i / 3 % 2) % 3];
        const Angles angles = {angle(random), angle(random), angle(random)};

        const Angles there = Change(from, to, angles);
        const Angles back = Change(to, from, there);

        ASSERT_LT(LargestDifference(Rotate(to, there), Rotate(from, angles)), 6e-5) << "seed 51, index " << i;
        ASSERT_LT(LargestDifference(Rotate(from, back), Rotate(from, angles)), 1.2e-4)
            << "seed 51, index " << i;
    }
}

TEST(ChangeOrder, LeavesTheAnglesWhenTheTargetEndsInNoAxis) {
    const Angles angles = {30, 40, 50};
    for (const std::int16_t axis : std::to_array<std::int16_t>({-32768, -1, 3, 256, 32767})) {
        EXPECT_TRUE(SameAngles(Change({0, 1, 2}, {0, 1, axis}, angles), angles));
        EXPECT_TRUE(SameAngles(Change({0, 1, axis}, {0, 1, axis}, angles), angles));
    }
}

TEST(ChangeOrder, TakesSourceIndexesOutsideTheThreeAsTheIdentity) {
    EXPECT_TRUE(SameAngles(Change({0, 7, -1}, {0, 1, 2}, {30, 40, 50}), {30, 0, 0}));
    EXPECT_TRUE(SameAngles(Change({32767, -32768, 3}, {0, 1, 2}, {30, 40, 50}), {0, 0, 0}));
}

TEST(ChangeOrder, GivesNoNumbersForAnglesThatAreNotFinite) {
    for (const float bad :
         {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        const Angles got = Change({0, 1, 2}, {2, 0, 1}, {bad, 40, 50});

        EXPECT_TRUE(std::isnan(got[1]));
    }
}

TEST(ChangeOrder, DoesNothingWithANullPointer) {
    const Order from = {0, 1, 2}, to = {2, 0, 1};
    float angle = 30;

    ChangeOrder(nullptr, to.data(), &angle, &angle, &angle);
    ChangeOrder(from.data(), nullptr, &angle, &angle, &angle);
    ChangeOrder(from.data(), to.data(), nullptr, &angle, &angle);
    ChangeOrder(from.data(), to.data(), &angle, nullptr, &angle);
    ChangeOrder(from.data(), to.data(), &angle, &angle, nullptr);

    EXPECT_EQ(angle, 30.0f);
}

} // namespace
} // namespace z3d::geometry
