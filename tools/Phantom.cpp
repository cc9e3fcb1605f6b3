#include "Phantom.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "Colour.h"
#include "Failure.h"
#include "Interrupt.h"

namespace z3d::tools {

namespace {

struct Point {
    double x, y, z;
};

// Each axis of the volume runs from -1 to 1.
struct Ellipsoid {
    Point centre;
    Point radius;
    uint8_t grey;
    Colour colour;
};

constexpr Colour kSkin = {150, 95, 70};
constexpr Colour kBone = {235, 225, 190};
constexpr Colour kBrain = {190, 110, 120};
constexpr Colour kFluid = {20, 40, 110};
constexpr Colour kEye = {90, 130, 210};
constexpr Colour kTumour = {70, 230, 80};

// Later ones lie over earlier ones.
constexpr Ellipsoid kParts[] = {
    {{0, -0.2, -0.7}, {0.45, 0.5, 0.5}, 95, kSkin},   // neck
    {{0, 0, 0.02}, {0.78, 0.88, 0.92}, 95, kSkin},    // scalp and face
    {{0, 0.9, -0.22}, {0.10, 0.10, 0.16}, 95, kSkin}, // nose
    {{0.8, 0, -0.1}, {0.07, 0.16, 0.2}, 95, kSkin},   // ears
    {{-0.8, 0, -0.1}, {0.07, 0.16, 0.2}, 95, kSkin},
    {{0, 0, 0.06}, {0.70, 0.80, 0.84}, 180, kBone},       // skull
    {{0, 0, 0.08}, {0.63, 0.73, 0.76}, 115, kBrain},      // brain
    {{0.14, 0.05, 0.15}, {0.10, 0.34, 0.16}, 30, kFluid}, // ventricles
    {{-0.14, 0.05, 0.15}, {0.10, 0.34, 0.16}, 30, kFluid},
    {{0.28, 0.72, -0.08}, {0.13, 0.13, 0.13}, 140, kEye}, // eyes
    {{-0.28, 0.72, -0.08}, {0.13, 0.13, 0.13}, 140, kEye},
    {{0.34, -0.3, 0.3}, {0.12, 0.14, 0.12}, 200, kTumour}, // something to find
};

double Distance(const Point& point, const Ellipsoid& part) {
    const double x = (point.x - part.centre.x) / part.radius.x;
    const double y = (point.y - part.centre.y) / part.radius.y;
    const double z = (point.z - part.centre.z) / part.radius.z;
    return std::sqrt(x * x + y * y + z * z);
}

constexpr double kEdgeVoxels = 4;

// How much of a voxel a part fills: its edge is spread over a few voxels, as in a scan.
double Coverage(const Point& point, const Ellipsoid& part, double halfAxis) {
    const double depth =
        (1 - Distance(point, part)) * std::min({part.radius.x, part.radius.y, part.radius.z});
    return std::clamp(0.5 + depth * halfAxis / kEdgeVoxels, 0.0, 1.0);
}

using Channels = std::array<double, 3>;

Channels OwnChannels(const Ellipsoid& part, VoxelType type) {
    if (type == VoxelType::Grey8) return {double(part.grey), 0, 0};
    return {double(part.colour.red), double(part.colour.green), double(part.colour.blue)};
}

double Coordinate(int index, int length) { return length == 1 ? 0 : 2.0 * index / (length - 1) - 1; }

struct Columns {
    int first, end;
};

// The voxels of a row that a part with its edge can reach, and a few more: the rest of the row it leaves alone.
Columns ReachOf(const Ellipsoid& part, const Point& row, int width, double halfAxis) {
    const double least = std::min({part.radius.x, part.radius.y, part.radius.z});
    const double reach = 1 + kEdgeVoxels / 2 / (least * halfAxis) + 0.001;
    const double y = (row.y - part.centre.y) / part.radius.y;
    const double z = (row.z - part.centre.z) / part.radius.z;
    const double left = reach * reach - y * y - z * z;
    if (left < 0) return {0, 0};
    const double half = std::sqrt(left) * part.radius.x;
    const double voxels = (width - 1) / 2.0;
    const auto column = [&](double x) {
        return static_cast<int>(std::clamp((x + 1) * voxels, 0.0, static_cast<double>(width)));
    };
    return {std::max(0, column(part.centre.x - half) - 1), std::min(width, column(part.centre.x + half) + 2)};
}

void PaintRow(std::vector<Channels>& row, Point point, VoxelType type, double halfAxis) {
    const auto width = static_cast<int>(row.size());
    std::ranges::fill(row, Channels{});
    for (const Ellipsoid& part : kParts) {
        const Channels own = OwnChannels(part, type);
        const Columns reach = ReachOf(part, point, width, halfAxis);
        for (int x = reach.first; x < reach.end; ++x) {
            point.x = Coordinate(x, width);
            const double coverage = Coverage(point, part, halfAxis);
            Channels& channels = row[static_cast<size_t>(x)];
            for (size_t c = 0; c < BytesPerVoxel(type); ++c)
                channels[c] += (own[c] - channels[c]) * coverage;
        }
    }
}

} // namespace

VolumeOwner MakePhantom(const VolumeSize& size, VoxelType type, const std::function<bool(double)>& progress) {
    VolumeOwner volume = MakeVolume(size, type);
    const VolumeLock lock(*volume);
    if (!lock.Held()) throw Failure("not enough memory to fill the volume");
    const double halfAxis = std::max({size.width, size.height, size.depth}) / 2.0;
    std::vector<Channels> row(static_cast<size_t>(size.width));
    for (int z = 0; z < size.depth; ++z) {
        StopIfInterrupted();
        if (progress && !progress(1.0 * z / size.depth)) throw Failure("cancelled");
        unsigned char* voxel = lock.Slice(z);
        for (int y = 0; y < size.height; ++y) {
            PaintRow(row, {0, Coordinate(y, size.height), Coordinate(z, size.depth)}, type, halfAxis);
            for (const Channels& channels : row)
                for (size_t c = 0; c < BytesPerVoxel(type); ++c)
                    *voxel++ = static_cast<uint8_t>(channels[c] + 0.5);
        }
    }
    return volume;
}

} // namespace z3d::tools
