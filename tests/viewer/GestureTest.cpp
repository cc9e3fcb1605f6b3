#include "Gesture.h"

#include <gtest/gtest.h>

#include <cmath>

#include "State.h"

namespace z3d::viewer {

namespace {

struct Dragged {
    State state;
    Gesture gesture;
};

// A drag from the middle of a picture that shows 0 to 100, of a volume that was looked at from the front.
Dragged Begun(Drag drag) {
    Dragged dragged;
    ShowVolume(dragged.state, {}, {64, 64, 64}, tools::VoxelType::Grey8);
    LookFrom(dragged.state.view, Side::Front);
    dragged.gesture = {drag, {100, 100}, {100, 100}, 200, {0, 100}, dragged.state.view, {}};
    return dragged;
}

State After(Drag drag, Point to) {
    Dragged dragged = Begun(drag);
    Apply(dragged.gesture, to, dragged.state);
    return dragged.state;
}

} // namespace

TEST(Gesture, AQuarterOfTheBallToTheLeftShowsWhatWasOnTheRight) {
    // Of a head seen from the front that is its left.
    const State state = After(Drag::Turn, {100 - 200 * 1.5707963267948966, 100});
    View left = state.view;
    LookFrom(left, Side::Left);
    for (size_t i = 0; i < 9; ++i)
        EXPECT_NEAR(state.view.rotation[i], left.rotation[i], 1e-6) << "element " << i;
}

TEST(Gesture, BackAtItsStartADragHasChangedNothing) {
    Dragged dragged = Begun(Drag::Turn);
    Apply(dragged.gesture, {370, 12}, dragged.state);
    EXPECT_NE(dragged.state.view.rotation, dragged.gesture.start.rotation);
    Apply(dragged.gesture, {100, 100}, dragged.state);
    EXPECT_EQ(dragged.state.view.rotation, dragged.gesture.start.rotation);
}

TEST(Gesture, ADragCrossesThePolesOfTheAngles) {
    // About the viewing direction the middle angle passes 90 degrees, where two axes coincide.
    Dragged dragged = Begun(Drag::Roll);
    dragged.gesture.from = {200, 100};
    for (int degree = 1; degree <= 180; ++degree) {
        const double angle = degree * 3.14159265358979 / 180;
        Apply(dragged.gesture, {100 + 100 * std::cos(angle), 100 - 100 * std::sin(angle)}, dragged.state);
        const tools::Rotation expected = Roll(dragged.gesture.start.rotation, degree);
        const tools::Rotation rendered = RenderedRotation(dragged.state.view);
        for (size_t i = 0; i < 9; ++i)
            EXPECT_NEAR(rendered[i], expected[i], 0.0046) << degree << " degrees, element " << i;
    }
}

TEST(Gesture, TheRangeWidensToTheRightAboutItsMiddle) {
    const tools::Interval range = After(Drag::Range, {250, 100}).view.Settings().range.fixed;
    EXPECT_FLOAT_EQ(range.low, -50);
    EXPECT_FLOAT_EQ(range.high, 150);
}

TEST(Gesture, DownwardsThePictureBecomesBrighter) {
    const tools::Interval range = After(Drag::Range, {100, 250}).view.Settings().range.fixed;
    EXPECT_FLOAT_EQ(range.low, -50);
    EXPECT_FLOAT_EQ(range.high, 50);
}

TEST(Gesture, TheWindowMovesByWholeValues) {
    // From 80 to 256, whose upper end cannot go further.
    const tools::Interval window = After(Drag::Window, {100, 79}).view.Settings().window;
    EXPECT_EQ(window.low, 91);
    EXPECT_EQ(window.high, 256);
}

TEST(Gesture, TheWindowNeverTurnsInsideOut) {
    const tools::Interval window = After(Drag::Window, {-4000, 100}).view.Settings().window;
    EXPECT_EQ(window.low, window.high);
}

TEST(Gesture, APictureMovesWithThePointer) {
    const State state = After(Drag::Move, {130, 90});
    EXPECT_EQ(state.offset.x, 30);
    EXPECT_EQ(state.offset.y, -10);
}

TEST(Zoom, StartsFromWhatFits) {
    State state;
    ShowVolume(state, {}, {30, 40, 120}, tools::VoxelType::Grey8);
    EXPECT_DOUBLE_EQ(FittingZoom(state.view, 260, 500), 2); // the diagonal is 130
    ZoomBy(state, 1, 2);
    EXPECT_DOUBLE_EQ(state.zoom, 2.2);
    ZoomBy(state, 1000, 2);
    EXPECT_DOUBLE_EQ(state.zoom, 32);
    ZoomBy(state, -1000, 2);
    EXPECT_DOUBLE_EQ(state.zoom, 0.05);
}

TEST(Spin, TurnsAnEighthInASecondAndNotFurtherAfterAPause) {
    State state;
    ShowVolume(state, {}, {64, 64, 64}, tools::VoxelType::Grey8);
    LookFrom(state.view, Side::Front);
    for (int i = 0; i < 10; ++i)
        Spin(state, 0.1);
    EXPECT_NEAR(std::fabs(state.view.angles[2]), 45, 1e-3);
    LookFrom(state.view, Side::Front);
    Spin(state, 3600);
    EXPECT_NEAR(std::fabs(state.view.angles[2]), 11.25, 1e-3);
}

} // namespace z3d::viewer
