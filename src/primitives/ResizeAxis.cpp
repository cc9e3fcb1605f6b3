#include "primitives/ResizeAxis.h"

#include <algorithm>

namespace z3d::primitives {
namespace {

// Added before truncations, so that a whole number that rounding left slightly short still counts as whole.
constexpr double kTolerance = 0.0000001;

// Factors are unbounded: an extent may be tiny, or beyond any integer.
std::int32_t WrittenLength(double extent, std::int32_t destinationLength) {
    const double length = extent + kTolerance;
    if (length >= static_cast<double>(destinationLength)) return destinationLength;
    return std::max(1, static_cast<std::int32_t>(length));
}

} // namespace

Axis Axis::Make(std::int32_t sourceLength, std::int32_t rectangleOrigin, std::int32_t rectangleLength,
                std::int32_t destinationLength, double factor) {
    Axis axis;
    axis.sourceLength = sourceLength;
    axis.origin = rectangleOrigin;
    axis.length = std::min(rectangleLength, sourceLength - rectangleOrigin);

    const double extent = static_cast<double>(axis.length) * factor;
    axis.written = WrittenLength(extent, destinationLength);
    axis.step = extent > 1.0 ? static_cast<double>(axis.length - 1) / (extent - 1.0) : 0.0;
    return axis;
}

AxisSample AxisWalk::NextPair() {
    const double position = position_;
    position_ += axis_.step;

    // The source's last pixel has no upper neighbour: it becomes one, with the full weight. An extent just
    // below a whole number takes its last position beyond that pixel, by up to 1e-7 of the length; it counts
    // as the last pixel too. When the rectangle is only that pixel, the lower neighbour lies before the
    // rectangle.
    const double shifted = position + kTolerance;
    const std::int32_t last = axis_.sourceLength - 1 - axis_.origin;
    if (shifted >= static_cast<double>(last)) return {axis_.origin + last - 1, 1.0};

    const std::int32_t index = static_cast<std::int32_t>(shifted);
    return {axis_.origin + index, position - static_cast<double>(index)};
}

std::int32_t AxisWalk::NextNearest() {
    const double rounded = position_ + 0.5;
    position_ += axis_.step;
    const std::int32_t last = axis_.length - 1;
    if (rounded >= static_cast<double>(last)) return axis_.origin + last;
    return axis_.origin + static_cast<std::int32_t>(rounded);
}

} // namespace z3d::primitives
