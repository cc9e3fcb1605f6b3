#include "render/Ray.h"

#include "render/ProjectionImage.h"
#include "render/ProjectionRenderer.h"

#include <cmath>

namespace z3d::render {
namespace {

constexpr DepthRange kNoSamples = {0, -1};

// A ray that moves less than this along an axis runs parallel to that axis's faces.
constexpr double kParallel = 0.00001;

} // namespace

Ray::Ray(const ProjectionRenderer& renderer, std::int32_t i, std::int32_t j)
    : renderer_(renderer),
      px_(i - static_cast<double>(renderer.outputHalfSize[0])),
      py_(j - static_cast<double>(renderer.outputHalfSize[1])),
      depthStart_(kHighestFloat),
      depthEnd_(kLowestFloat) {}

DepthRange Ray::Trim() {
    if (!FindEnds()) return kNoSamples;

    // Intersect with the six faces; crop bounds are stored in the order z, y, x.
    for (int axis = 2; axis >= 0; --axis) {
        ClipAtFace(axis, renderer_.cropLow[2 - axis]);
        ClipAtFace(axis, renderer_.cropHigh[2 - axis]);
    }

    // View depth to output depth index. A ray without a hit still starts at the largest float.
    const double halfDepth = renderer_.outputHalfSize[2];
    const auto lastIndex = static_cast<float>(renderer_.outputDepth - 1);
    auto start = static_cast<float>(depthStart_ + halfDepth);
    auto end = static_cast<float>(depthEnd_ + halfDepth);
    if (start > lastIndex) return kNoSamples;
    if (start < 0) start = 0;
    if (end < 0) return kNoSamples;
    if (end > lastIndex) end = lastIndex;
    if (start > end) return kNoSamples;
    return {static_cast<std::int32_t>(start), static_cast<std::int32_t>(end)};
}

bool Ray::FindEnds() {
    const double reach = static_cast<double>(renderer_.outputHalfSize[2]) + 1;
    for (int axis = 0; axis < 3; ++axis) {
        const float* row = renderer_.inverseRotation2 + 3 * axis;
        entry_[axis] = static_cast<float>(px_ * row[0] + py_ * row[1] - reach * row[2]);
        exit_[axis] = static_cast<float>(entry_[axis] + 2 * reach * row[2]);
        // Both ends beyond the same face: the ray misses the box.
        const float low = renderer_.cropLow[2 - axis];
        const float high = renderer_.cropHigh[2 - axis];
        if (entry_[axis] < low && exit_[axis] < low) return false;
        if (entry_[axis] > high && exit_[axis] > high) return false;
    }
    return true;
}

void Ray::ClipAtFace(int axis, float plane) {
    const double entry = entry_[axis];
    const double exit = exit_[axis];
    if (std::fabs(entry - exit) < kParallel) return;
    if ((exit - plane) * (entry - plane) > 0) return; // both ends on the same side

    // The hit point, bounds inclusive.
    float hit[3];
    hit[axis] = plane;
    for (int other = 0; other < 3; ++other) {
        if (other == axis) continue;
        const double otherEntry = entry_[other];
        const double otherExit = exit_[other];
        hit[other] =
            static_cast<float>(otherEntry + (otherEntry - otherExit) * (plane - entry) / (entry - exit));
        if (hit[other] < renderer_.cropLow[2 - other] || hit[other] > renderer_.cropHigh[2 - other]) return;
    }

    // Its view depth: row 2 of the rotation.
    const float* view = renderer_.rotation2 + 6;
    const double x = hit[0];
    const double y = hit[1];
    const double z = hit[2];
    const double depth = view[0] * x + view[1] * y + view[2] * z;
    if (depth < depthStart_) depthStart_ = static_cast<float>(depth);
    if (depth > depthEnd_) depthEnd_ = static_cast<float>(depth);
}

void Ray::PointAt(std::int32_t k, float (&point)[3]) const {
    const double depth = k - static_cast<double>(renderer_.outputHalfSize[2]);
    for (int axis = 0; axis < 3; ++axis) {
        const float* row = renderer_.inverseRotation2 + 3 * axis;
        point[axis] =
            static_cast<float>(depth * row[2] + px_ * row[0] + py_ * row[1] + renderer_.volumeCentre[axis]);
    }
}

} // namespace z3d::render
