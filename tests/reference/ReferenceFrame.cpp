#include "reference/ReferenceFrame.h"

#include <algorithm>
#include <cmath>

namespace z3d::reference {

namespace {

struct Bounds {
    std::array<double, 3> minima;
    std::array<double, 3> maxima;
};

void ExtendBounds(const Matrix& rotation, double x, double y, double z, Bounds& bounds) {
    for (int row = 0; row < 3; ++row) {
        const double view =
            Element(rotation, row, 0) * x + Element(rotation, row, 1) * y + Element(rotation, row, 2) * z;
        const auto axis = static_cast<std::size_t>(row);
        if (view > bounds.maxima[axis]) bounds.maxima[axis] = view;
        if (view < bounds.minima[axis]) bounds.minima[axis] = view;
    }
}

Bounds RotatedBounds(const Matrix& rotation, const Point& halfExtent) {
    const double ax = halfExtent[0];
    const double ay = halfExtent[1];
    const double az = halfExtent[2];
    const double largest = std::numeric_limits<double>::max();
    Bounds bounds = {{largest, largest, largest}, {-largest, -largest, -largest}};
    ExtendBounds(rotation, -ax, ay, az, bounds);
    ExtendBounds(rotation, ax, ay, az, bounds);
    ExtendBounds(rotation, ax, -ay, az, bounds);
    ExtendBounds(rotation, -ax, -ay, az, bounds);
    ExtendBounds(rotation, -ax, ay, -az, bounds);
    ExtendBounds(rotation, ax, ay, -az, bounds);
    ExtendBounds(rotation, ax, -ay, -az, bounds);
    ExtendBounds(rotation, -ax, -ay, -az, bounds);
    return bounds;
}

bool IsFinite(const Matrix& matrix) {
    return std::all_of(matrix.begin(), matrix.end(), [](float element) { return std::isfinite(element); });
}

Matrix Transposed(const Matrix& matrix) {
    Matrix transposed = {};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            transposed[3 * row + column] = matrix[3 * column + row];
        }
    }
    return transposed;
}

// `first` and `last` are 1-based voxels of the axis.
void SetCrop(Frame& frame, std::size_t axis, std::int16_t first, std::int16_t last) {
    const double halfExtent = frame.volumeCentre[axis];
    frame.cropLow[axis] = Stored((first - 1) - halfExtent);
    frame.cropHigh[axis] = Stored((last - 1) - halfExtent);
    ClampCropInterval(frame.cropLow[axis], frame.cropHigh[axis], frame.volumeCentre[axis]);
}

} // namespace

void ClampCropInterval(float& low, float& high, float halfExtent) {
    const double h = halfExtent;
    double mid = (static_cast<double>(low) + static_cast<double>(high)) * 0.5;
    double half = std::max(std::abs(low - mid), std::abs(high - mid));
    if (half < 0.5) half = 0.5;

    mid = std::max(mid, -h);
    mid = std::min(mid, h);

    low = Stored(mid - half);
    high = Stored(mid + half);

    if (low < -h) low = Stored(-h);
    if (low > h) low = Stored(h);
    if (high < -h) high = Stored(-h);
    if (high > h) high = Stored(h);
}

std::optional<Frame> BuildFrame(const Volume& volume, const Request& request) {
    if (!IsFinite(request.rotation)) return std::nullopt;

    Frame frame = {};
    frame.volumeSize = {volume.width, volume.height, volume.depth};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        frame.volumeCentre[axis] = Stored((frame.volumeSize[axis] - 1) * 0.5);
    }

    frame.rotation = request.rotation;
    frame.inverseRotation = Transposed(request.rotation);

    const Bounds bounds = RotatedBounds(frame.rotation, frame.volumeCentre);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double extent = bounds.maxima[axis] - bounds.minima[axis];
        // The size itself, one more than the truncated extent, has to fit too.
        if (!(extent < static_cast<double>(std::numeric_limits<std::int32_t>::max()))) return std::nullopt;
        frame.outputSize[axis] = static_cast<int>(extent) + 1;
        frame.outputHalfSize[axis] = Stored((frame.outputSize[axis] - 1) * 0.5);
    }

    SetCrop(frame, 2, request.z0, request.z1);
    SetCrop(frame, 1, request.y0, request.y1);
    SetCrop(frame, 0, request.x0, request.x1);
    return frame;
}

} // namespace z3d::reference
