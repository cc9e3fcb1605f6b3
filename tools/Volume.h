// What the tool knows about a volume, and how one is made.
#pragma once

#include "HostObjects.h"

namespace z3d::tools {

// Crop bounds are signed 16-bit numbers, so a longer axis could not be addressed to its end.
inline constexpr int kLongestAxis = 32767;

struct VolumeSize {
    int width, height, depth;
};

enum class VoxelType { Grey8, Rgb8 };

inline unsigned int BytesPerVoxel(VoxelType type) { return type == VoxelType::Rgb8 ? 3 : 1; }

// An empty volume; fails when memory is short.
VolumeOwner MakeVolume(const VolumeSize& size, VoxelType type);

VolumeSize SizeOf(const Volume3D& volume);

} // namespace z3d::tools
