// Where the columns, or the rows, of a resized image come from.
#pragma once

#include <cstdint>

namespace z3d::primitives {

// The lower index of a pair of neighbours, counted from the source image's first pixel, and how far the
// position lies on the way to the upper one. The fraction is 1 at the source's end, where the pair is the
// last two; it can be slightly below 0, by less than the position's tolerance.
struct AxisSample {
    std::int32_t lower;
    double fraction;
};

// One direction of a resize.
struct Axis {
    std::int32_t sourceLength; // of the whole source image
    std::int32_t origin;       // of the rectangle
    std::int32_t length;       // of the rectangle within the source
    std::int32_t written;      // destination positions
    double step;               // source pixels per destination position

    // The rectangle starts within the source, lengths are at least 1 and the factor is above 0.
    static Axis Make(std::int32_t sourceLength, std::int32_t rectangleOrigin, std::int32_t rectangleLength,
                     std::int32_t destinationLength, double factor);
};

// Visits an axis's destination positions in order. A position is the sum of the steps before it, not a
// product.
class AxisWalk {
public:
    explicit AxisWalk(const Axis& axis) : axis_(axis) {}

    // The next position's pair; the source is at least 2 long.
    AxisSample NextPair();

    // The next position's nearest pixel within the rectangle.
    std::int32_t NextNearest();

private:
    const Axis axis_;
    double position_ = 0.0;
};

} // namespace z3d::primitives
