#include "Phantom.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

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

// How much of a voxel a part fills: its edge is spread over a few voxels, as in a scan.
double Coverage(const Point& point, const Ellipsoid& part, double halfAxis) {
    constexpr double kEdgeVoxels = 4;
    const double depth =
        (1 - Distance(point, part)) * std::min({part.radius.x, part.radius.y, part.radius.z});
    return std::clamp(0.5 + depth * halfAxis / kEdgeVoxels, 0.0, 1.0);
}

using Channels = std::array<double, 3>;

Channels ChannelsAt(const Point& point, VoxelType type, double halfAxis) {
    Channels channels = {};
    for (const Ellipsoid& part : kParts) {
        const double coverage = Coverage(point, part, halfAxis);
        const Channels own =
            type == VoxelType::Rgb8
                ? Channels{double(part.colour.red), double(part.colour.green), double(part.colour.blue)}
                : Channels{double(part.grey), 0, 0};
        for (size_t c = 0; c < 3; ++c)
            channels[c] += (own[c] - channels[c]) * coverage;
    }
    return channels;
}

double Coordinate(int index, int length) { return length == 1 ? 0 : 2.0 * index / (length - 1) - 1; }

} // namespace

VolumeOwner MakePhantom(const VolumeSize& size, VoxelType type) {
    VolumeOwner volume = MakeVolume(size, type);
    const VolumeLock lock(*volume);
    if (!lock.Held()) throw Failure("not enough memory to fill the volume");
    const double halfAxis = std::max({size.width, size.height, size.depth}) / 2.0;
    const size_t bytesPerVoxel = BytesPerVoxel(type);
    for (int z = 0; z < size.depth; ++z) {
        StopIfInterrupted();
        unsigned char* voxel = lock.Slice(z);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x, voxel += bytesPerVoxel) {
                const Point point = {Coordinate(x, size.width), Coordinate(y, size.height),
                                     Coordinate(z, size.depth)};
                const Channels channels = ChannelsAt(point, type, halfAxis);
                for (size_t c = 0; c < bytesPerVoxel; ++c)
                    voxel[c] = static_cast<uint8_t>(std::lround(channels[c]));
            }
    }
    return volume;
}

} // namespace z3d::tools
