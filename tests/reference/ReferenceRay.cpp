#include "reference/ReferenceRay.h"

#include <cmath>

namespace z3d::reference {

namespace {

struct RayEnds {
    Point entry;
    Point exit;
};

// False as soon as one axis has both ends on the same outer side of the crop box.
bool FindRayEnds(const Frame& frame, double px, double py, RayEnds& ends) {
    const double reach = frame.outputHalfSize[2] + 1.0;
    for (int row = 0; row < 3; ++row) {
        const auto axis = static_cast<std::size_t>(row);
        const double alongColumns = Element(frame.inverseRotation, row, 0);
        const double alongRows = Element(frame.inverseRotation, row, 1);
        const double alongDepth = Element(frame.inverseRotation, row, 2);
        ends.entry[axis] = Stored(px * alongColumns + py * alongRows - reach * alongDepth);
        // From the entry point as it is kept, not from its unrounded value.
        ends.exit[axis] = Stored(ends.entry[axis] + 2.0 * reach * alongDepth);

        if (ends.entry[axis] < frame.cropLow[axis] && ends.exit[axis] < frame.cropLow[axis]) return false;
        if (ends.entry[axis] > frame.cropHigh[axis] && ends.exit[axis] > frame.cropHigh[axis]) return false;
    }
    return true;
}

// Where the ray crosses the plane `plane` of axis a, if that is inside the face's bounds on axes b1 and b2.
std::optional<Point> ClipRayAtFace(const Frame& frame, const RayEnds& ends, std::size_t a, float plane,
                                   std::size_t b1, std::size_t b2) {
    const double q = plane;
    const double entryA = ends.entry[a];
    const double exitA = ends.exit[a];
    if (std::abs(entryA - exitA) < 0.00001) return std::nullopt;
    // An end exactly on the plane counts as a crossing.
    if ((exitA - q) * (entryA - q) > 0.0) return std::nullopt;

    Point hit = {};
    hit[a] = plane;
    for (const std::size_t b : {b1, b2}) {
        const double entryB = ends.entry[b];
        const double exitB = ends.exit[b];
        hit[b] = Stored(entryB + (entryB - exitB) * (q - entryA) / (entryA - exitA));
        if (hit[b] < frame.cropLow[b] || hit[b] > frame.cropHigh[b]) return std::nullopt;
    }
    return hit;
}

struct DepthRange {
    float start = kLargest;
    float end = -kLargest;
};

void WidenByFace(const Frame& frame, const RayEnds& ends, std::size_t a, float plane, std::size_t b1,
                 std::size_t b2, DepthRange& range) {
    const std::optional<Point> hit = ClipRayAtFace(frame, ends, a, plane, b1, b2);
    if (!hit) return;
    const double depth = Element(frame.rotation, 2, 0) * (*hit)[0] + Element(frame.rotation, 2, 1) * (*hit)[1]
                         + Element(frame.rotation, 2, 2) * (*hit)[2];
    if (depth < range.start) range.start = Stored(depth);
    if (depth > range.end) range.end = Stored(depth);
}

DepthRange FindDepthRange(const Frame& frame, const RayEnds& ends) {
    constexpr std::size_t kX = 0;
    constexpr std::size_t kY = 1;
    constexpr std::size_t kZ = 2;
    DepthRange range;
    WidenByFace(frame, ends, kZ, frame.cropLow[kZ], kX, kY, range);
    WidenByFace(frame, ends, kZ, frame.cropHigh[kZ], kX, kY, range);
    WidenByFace(frame, ends, kY, frame.cropLow[kY], kX, kZ, range);
    WidenByFace(frame, ends, kY, frame.cropHigh[kY], kX, kZ, range);
    WidenByFace(frame, ends, kX, frame.cropLow[kX], kY, kZ, range);
    WidenByFace(frame, ends, kX, frame.cropHigh[kX], kY, kZ, range);
    return range;
}

} // namespace

std::optional<Ray> TraceRay(const Frame& frame, int i, int j) {
    const double px = i - static_cast<double>(frame.outputHalfSize[0]);
    const double py = j - static_cast<double>(frame.outputHalfSize[1]);
    RayEnds ends = {};
    if (!FindRayEnds(frame, px, py, ends)) return std::nullopt;

    // Shift from view depth to output depth indexes; the shifted ends are kept, so they are rounded again.
    DepthRange range = FindDepthRange(frame, ends);
    const double hd = frame.outputHalfSize[2];
    range.start = Stored(range.start + hd);
    range.end = Stored(range.end + hd);

    // The last index is a float as all depths are: beyond 2^24 it is one that a float has. A ray that met no face still
    // starts at the largest float and ends here.
    const float lastIndex = Stored(frame.outputSize[2] - 1);
    if (range.start > lastIndex) return std::nullopt;
    if (range.start < 0.0f) range.start = 0.0f;
    if (range.end < 0.0f) return std::nullopt;
    if (range.end > lastIndex) range.end = lastIndex;
    if (range.start > range.end) return std::nullopt;

    return Ray{px, py, static_cast<std::int64_t>(range.start), static_cast<std::int64_t>(range.end)};
}

void ForEachRay(const Frame& frame, float initialValue, int border, std::vector<float>& pixels,
                const RayRule& rule) {
    const int width = frame.outputSize[0];
    const int height = frame.outputSize[1];
    for (int j = height - 1 - border; j >= border; --j) {
        for (int i = border; i < width - border; ++i) {
            const auto row = static_cast<std::size_t>(height - 1 - j);
            float* pixel = &pixels[(row * static_cast<std::size_t>(width) + static_cast<std::size_t>(i)) * 3];
            pixel[0] = initialValue;
            pixel[1] = initialValue;
            pixel[2] = initialValue;
            if (const std::optional<Ray> ray = TraceRay(frame, i, j)) rule(*ray, pixel);
        }
    }
}

} // namespace z3d::reference
