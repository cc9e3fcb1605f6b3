// Volumes and projections as a plain host has them from the DLL.
#pragma once

#include "exports/HostSide.h"

#include "Zentra3DRendering.h"

#include <cstddef>
#include <vector>

namespace z3d::test {

// Freed at the end of its scope. Unlocked; every voxel byte follows from its position, neighbours differ.
class ExportedVolume {
public:
    ExportedVolume(unsigned int width, unsigned int height, unsigned int depth, unsigned int bytesPerVoxel);
    ~ExportedVolume();
    ExportedVolume(const ExportedVolume&) = delete;
    ExportedVolume& operator=(const ExportedVolume&) = delete;

    Volume3D* Get() const { return volume_; }
    Volume3D* operator->() const { return volume_; }

private:
    Volume3D* volume_;
};

// 15 times a rotation in whole numbers is (5 10 10 / -2 11 -10 / -14 2 5): orthonormal, no element 0.
inline constexpr float kOblique[9] = {1.0f / 3,  2.0f / 3,    2.0f / 3,  -2.0f / 15, 11.0f / 15,
                                      -2.0f / 3, -14.0f / 15, 2.0f / 15, 1.0f / 3};
inline constexpr float kNotTurned[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

// Size of a projection's pixels.
constexpr std::size_t ProjectionBytes(unsigned short width, unsigned short height) {
    return std::size_t{width} * height * 3 * sizeof(float);
}

// The whole volume in the full grey window, as a maximum. Null and unlike any size when the test goes wrong.
struct Projection {
    float* pixels = nullptr;
    unsigned short width = 0xABCD;
    unsigned short height = 0xABCD;
};
Projection RenderMaximum(Volume3D* volume, const float* rotation);

} // namespace z3d::test
