#include "Gesture.h"

#include <cmath>
#include <numbers>

#include "State.h"

namespace z3d::viewer {

using tools::Interval;

namespace {

constexpr double kPixelsPerDoubling = 150; // of the width of a range
constexpr double kPixelsPerWidth = 300;    // to move a range by its own width

double Direction(Point centre, Point point) { return std::atan2(centre.y - point.y, point.x - centre.x); }

// To the right the range becomes wider and the contrast softer; downwards the picture becomes brighter.
Interval MovedRange(const Interval& start, double right, double down) {
    const double width = double{start.high} - start.low;
    const double middle = (double{start.high} + start.low) / 2 - down * width / kPixelsPerWidth;
    const double half = width / 2 * std::exp2(right / kPixelsPerDoubling);
    return {static_cast<float>(middle - half), static_cast<float>(middle + half)};
}

// Whole values: voxels have no others.
void MoveWindow(View& view, const Interval& start, double right, double down) {
    const double step = WindowTop(view) / 256;
    const double low = start.low - (right + down) * step / 2;
    const double high = start.high + (right - down) * step / 2;
    const double middle = (low + high) / 2;
    SetWindowLow(view, static_cast<float>(std::round(std::min(low, middle))));
    SetWindowHigh(view, static_cast<float>(std::round(std::max(high, middle))));
}

} // namespace

void Apply(const Gesture& gesture, Point to, State& state) {
    const double right = to.x - gesture.from.x;
    const double down = to.y - gesture.from.y;
    const View& start = gesture.start;
    switch (gesture.drag) {
    case Drag::None:
        break;
    case Drag::Turn:
        SetRotation(state.view, DragBall(start.rotation, right, -down, gesture.radius));
        break;
    case Drag::Roll: {
        const double turn = Direction(gesture.centre, to) - Direction(gesture.centre, gesture.from);
        SetRotation(state.view, Roll(start.rotation, turn * 180 / std::numbers::pi));
        break;
    }
    case Drag::Range:
        SetRange(state.view, MovedRange(gesture.shown, right, down));
        break;
    case Drag::Window:
        MoveWindow(state.view, start.Settings().window, right, down);
        break;
    case Drag::Move:
        state.offset = {gesture.startOffset.x + right, gesture.startOffset.y + down};
        break;
    }
}

} // namespace z3d::viewer
