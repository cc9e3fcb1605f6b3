#include "Placement.h"

#include <gtest/gtest.h>

namespace z3d::viewer {

namespace {

void ExpectBox(const Box& actual, const Box& expected) {
    EXPECT_EQ(actual.left, expected.left);
    EXPECT_EQ(actual.top, expected.top);
    EXPECT_EQ(actual.width, expected.width);
    EXPECT_EQ(actual.height, expected.height);
}

} // namespace

TEST(Placement, StandsInTheMiddle) {
    const Placement placement = Placed({10, 20}, {100, 100}, 2, {});
    EXPECT_EQ(placement.left, 40);
    EXPECT_EQ(placement.top, 30);
}

TEST(Placement, FindsThePixelUnderAPoint) {
    const Placement placement = Placed({10, 20}, {100, 100}, 2, {});
    EXPECT_EQ(placement.ColumnAt(40.5), 0);
    EXPECT_EQ(placement.ColumnAt(41.9), 0);
    EXPECT_EQ(placement.ColumnAt(42), 1);
    EXPECT_EQ(placement.ColumnAt(39.5), -1);
    EXPECT_EQ(placement.RowAt(69.5), 19);
}

TEST(Placement, ShowsAllOfASmallPicture) {
    const Visible part = VisiblePart(Placed({10, 20}, {100, 100}, 2, {}), {10, 20}, {100, 100});
    ExpectBox(part.source, {0, 0, 10, 20});
    ExpectBox(part.target, {40, 30, 20, 40});
}

TEST(Placement, CutsWholePixelsOffALargePicture) {
    // At 10 pixels each, from -450 on: columns 45 to 54 show.
    const Visible part = VisiblePart(Placed({100, 100}, {100, 100}, 10, {}), {100, 100}, {100, 100});
    ExpectBox(part.source, {45, 45, 11, 11});
    ExpectBox(part.target, {0, 0, 110, 110});
}

TEST(Placement, ShowsNothingOfAPictureThatWasMovedAway) {
    const Visible part = VisiblePart(Placed({10, 10}, {100, 100}, 1, {500, 0}), {10, 10}, {100, 100});
    EXPECT_EQ(part.source.width, 0);
    EXPECT_EQ(part.target.width, 0);
}

} // namespace z3d::viewer
