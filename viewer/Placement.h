// Where a picture lies in its window.
#pragma once

#include "Gesture.h"

namespace z3d::viewer {

struct Area {
    int width, height;
};

struct Box {
    int left, top, width, height;
};

struct Placement {
    double left, top; // of the picture, in pixels of the screen
    double zoom;

    // The pixel of the picture under a point; may lie outside of it.
    int ColumnAt(double x) const;
    int RowAt(double y) const;
};

// The picture's centre stands in the middle, moved by `offset`.
Placement Placed(Area picture, Area window, double zoom, Point offset);

// The part of the picture that shows, whole pixels of it, and where it goes.
struct Visible {
    Box source;
    Box target;
};
Visible VisiblePart(const Placement& placement, Area picture, Area window);

} // namespace z3d::viewer
