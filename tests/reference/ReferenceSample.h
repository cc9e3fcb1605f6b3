// The walk along a ray and the nearest voxel at a position.
#pragma once

#include "reference/ReferenceFrame.h"
#include "reference/ReferenceRay.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace z3d::reference {

// What a mode renders.
struct Scene {
    const Volume& volume;
    const Frame& frame;
    float high;
    float low;
    float extra;
};

struct Voxel {
    int x;
    int y;
    int z;
};

// In volume index space.
inline Point PositionAt(const Frame& frame, const Ray& ray, std::int64_t depthIndex) {
    const double viewDepth = static_cast<double>(depthIndex) - frame.outputHalfSize[2];
    Point position = {};
    for (int row = 0; row < 3; ++row) {
        const auto axis = static_cast<std::size_t>(row);
        position[axis] = Stored(viewDepth * Element(frame.inverseRotation, row, 2)
                                + ray.px * Element(frame.inverseRotation, row, 0)
                                + ray.py * Element(frame.inverseRotation, row, 1) + frame.volumeCentre[axis]);
    }
    return position;
}

// The position is carried from sample to sample, so it is rounded at every step.
inline void StepForward(const Frame& frame, Point& position) {
    for (int row = 0; row < 3; ++row) {
        const auto axis = static_cast<std::size_t>(row);
        position[axis] = Stored(position[axis] + Element(frame.inverseRotation, row, 2));
    }
}

inline void StepBackward(const Frame& frame, Point& position) {
    for (int row = 0; row < 3; ++row) {
        const auto axis = static_cast<std::size_t>(row);
        position[axis] = Stored(position[axis] - Element(frame.inverseRotation, row, 2));
    }
}

// 0.49 rather than 0.5 sends a coordinate halfway between two voxels to the lower one. Truncation is toward
// zero; a coordinate beyond the integers is held at their ends, where the clamp that follows decides.
inline int TruncatedIndex(double coordinate) {
    const double shifted = coordinate + 0.49;
    if (shifted <= static_cast<double>(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    if (shifted >= static_cast<double>(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    return static_cast<int>(shifted);
}

inline int NearestIndex(double coordinate, int size) {
    int index = TruncatedIndex(coordinate);
    index = std::max(index, 0);
    return std::min(index, size - 1);
}

inline Voxel NearestVoxel(const Frame& frame, const std::array<double, 3>& position) {
    return {NearestIndex(position[0], frame.volumeSize[0]), NearestIndex(position[1], frame.volumeSize[1]),
            NearestIndex(position[2], frame.volumeSize[2])};
}

inline Voxel NearestVoxel(const Frame& frame, const Point& position) {
    return NearestVoxel(frame, std::array<double, 3>{position[0], position[1], position[2]});
}

// First byte of the slice in which the voxel lies.
inline const std::uint8_t* SliceBytes(const Volume& volume, int z) {
    const std::size_t sliceBytes = static_cast<std::size_t>(volume.width)
                                   * static_cast<std::size_t>(volume.height)
                                   * static_cast<std::size_t>(volume.bytesPerVoxel);
    return volume.voxels.data() + static_cast<std::size_t>(z) * sliceBytes;
}

// Byte y * width + x of the slice, however many bytes a voxel of the volume has.
inline int GreyAt(const Volume& volume, const Voxel& voxel) {
    const std::size_t offset = static_cast<std::size_t>(voxel.y) * static_cast<std::size_t>(volume.width)
                               + static_cast<std::size_t>(voxel.x);
    return SliceBytes(volume, voxel.z)[offset];
}

inline std::array<int, 3> ColourAt(const Volume& volume, const Voxel& voxel) {
    const std::size_t offset = static_cast<std::size_t>(voxel.y) * static_cast<std::size_t>(volume.width)
                               + static_cast<std::size_t>(voxel.x);
    const std::uint8_t* bytes = SliceBytes(volume, voxel.z) + 3 * offset;
    return {bytes[0], bytes[1], bytes[2]};
}

// 0 to 765: what a window is tested on in colour volumes.
inline int ChannelSum(const std::array<int, 3>& colour) { return colour[0] + colour[1] + colour[2]; }

inline void CopyToAllFloats(float* pixel) {
    pixel[1] = pixel[0];
    pixel[2] = pixel[0];
}

} // namespace z3d::reference
