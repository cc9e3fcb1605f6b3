#include "Placement.h"

#include <algorithm>
#include <cmath>

namespace z3d::viewer {

namespace {

int Whole(double value) { return static_cast<int>(std::floor(value)); }

struct Span {
    int first, count;  // of the picture
    int start, length; // of the window
};

Span VisibleSpan(double left, double zoom, int picture, int window) {
    const int first = std::clamp(Whole(-left / zoom), 0, picture);
    const int end = std::clamp(Whole((window - left) / zoom) + 1, first, picture);
    const int start = Whole(left + first * zoom + 0.5);
    return {first, end - first, start, Whole(left + end * zoom + 0.5) - start};
}

} // namespace

int Placement::ColumnAt(double x) const { return Whole((x - left) / zoom); }

int Placement::RowAt(double y) const { return Whole((y - top) / zoom); }

Placement Placed(Area picture, Area window, double zoom, Point offset) {
    const double x = (window.width - picture.width * zoom) / 2 + offset.x;
    const double y = (window.height - picture.height * zoom) / 2 + offset.y;
    return {std::floor(x + 0.5), std::floor(y + 0.5), zoom};
}

Visible VisiblePart(const Placement& placement, Area picture, Area window) {
    const Span x = VisibleSpan(placement.left, placement.zoom, picture.width, window.width);
    const Span y = VisibleSpan(placement.top, placement.zoom, picture.height, window.height);
    return {{x.first, y.first, x.count, y.count}, {x.start, y.start, x.length, y.length}};
}

} // namespace z3d::viewer
