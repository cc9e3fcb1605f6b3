// A drag of the pointer over the picture. The view depends on where the drag began and where the pointer is now,
// not on the way between: back at its start, everything is as it was.
#pragma once

#include "View.h"

namespace z3d::viewer {

struct Point {
    double x, y; // pixels of the screen, y downwards
};

enum class Drag { None, Turn, Roll, Range, Window, Move };

struct State;

struct Gesture {
    Drag drag = Drag::None;
    Point from = {};
    Point centre = {};     // of the picture on the screen
    double radius = 1;     // of the ball that is turned, in pixels of the screen
    tools::Interval shown; // black to white as the drag begins
    View start = {};
    Point startOffset = {};
};

// The state that the gesture has led to with the pointer at `to`.
void Apply(const Gesture& gesture, Point to, State& state);

} // namespace z3d::viewer
