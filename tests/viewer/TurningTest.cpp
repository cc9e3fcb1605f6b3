#include "Turning.h"

#include <gtest/gtest.h>

#include <cmath>

namespace z3d::viewer {

using tools::Rotation;

namespace {

constexpr Rotation kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};
constexpr double kQuarter = 1.5707963267948966;

void ExpectNear(const Rotation& actual, const Rotation& expected) {
    for (size_t i = 0; i < 9; ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-12) << "element " << i;
}

} // namespace

// Rows are the view's right, up and away directions. What faced the viewer, -z, comes to lie on the right.
TEST(Turning, ADragToTheRightBringsTheNearSideToTheRight) {
    ExpectNear(DragBall(kIdentity, 100 * kQuarter, 0, 100), {0, 0, -1, 0, 1, 0, 1, 0, 0});
}

TEST(Turning, ADragUpBringsTheNearSideUp) {
    ExpectNear(DragBall(kIdentity, 0, 100 * kQuarter, 100), {1, 0, 0, 0, 0, -1, 0, 1, 0});
}

TEST(Turning, NoDragChangesNothing) { EXPECT_EQ(DragBall(kIdentity, 0, 0, 100), kIdentity); }

TEST(Turning, ADragBackUndoesADrag) {
    const Rotation there = DragBall(kIdentity, 37, -12, 80);
    ExpectNear(DragBall(there, -37, 12, 80), kIdentity);
}

// x pointed right and points up now.
TEST(Turning, ARollIsAnticlockwise) { ExpectNear(Roll(kIdentity, 90), {0, -1, 0, 1, 0, 0, 0, 0, 1}); }

TEST(Turning, TenThousandTurnsLeaveARotation) {
    Rotation rotation = RotationOf({-105, 0, 30});
    for (int i = 0; i < 10000; ++i)
        rotation = DragBall(rotation, 3, 1, 50);
    for (size_t row = 0; row < 3; ++row)
        EXPECT_NEAR(std::hypot(rotation[3 * row], rotation[3 * row + 1], rotation[3 * row + 2]), 1, 1e-12);
    EXPECT_NEAR(rotation[0] * rotation[3] + rotation[1] * rotation[4] + rotation[2] * rotation[5], 0, 1e-12);
}

TEST(Turning, AnglesAndRotationsAreTheSameTurn) {
    const Angles angles = {-105, 12.5F, 30};
    const Angles again = AnglesOf(RotationOf(angles));
    for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(again[i], angles[i], 1e-4);
}

} // namespace z3d::viewer
