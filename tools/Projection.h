// Rotations and rendered projections, through the library's exports.
#pragma once

#include <array>
#include <cstddef>

#include "Arguments.h"
#include "HostObjects.h"

namespace z3d::tools {

// Row by row: where the view's x, y and depth axes point in the volume.
using Rotation = std::array<double, 9>;

// R(order[0]) * R(order[1]) * R(order[2]), angles in degrees about x, y and z.
Rotation MakeRotation(const AxisOrder& order, const std::array<float, 3>& angles);

// The view that `rotation` gives, turned further about one of its own axes (0, 1 or 2).
Rotation TurnAboutViewAxis(const Rotation& rotation, short axis, float degrees);

struct ProjectionRequest {
    short mode;
    const char* modeName; // for messages
    CropBox crop;
    Interval window;
    float extra;
};

// Pixels of three floats, top row of the view first.
struct Projection {
    ProjectionOwner pixels;
    int width, height;
    double seconds; // spent in the library

    const float* Row(int fromTop) const {
        return pixels.get() + size_t{3} * static_cast<size_t>(fromTop) * static_cast<size_t>(width);
    }
    size_t FloatCount() const { return size_t{3} * static_cast<size_t>(width) * static_cast<size_t>(height); }
};

struct PictureSize {
    int width, height;
};

// The size of a projection before it is made.
PictureSize SizeOfView(Volume3D& volume, const Rotation& rotation);

// The projection in the middle of a larger picture, whose other pixels hold `empty`.
Projection Padded(Projection projection, PictureSize size, float empty);

// Fails with a sentence when the library returns nothing.
Projection Project(Volume3D& volume, const Rotation& rotation, const ProjectionRequest& request);

// Whether a float marks a pixel without a contribution: the most negative and the greatest finite float.
bool IsSentinel(float value);

} // namespace z3d::tools
