// What the tool knows about a volume, and how one is made.
#pragma once

#include "HostObjects.h"
#include "files/VolumeTypes.h"

namespace z3d::tools {

using files::BytesPerVoxel;
using files::kLongestAxis;
using files::VolumeSize;
using files::VoxelType;

// An empty volume; fails when memory is short.
VolumeOwner MakeVolume(const VolumeSize& size, VoxelType type);

// The same voxels once more, unlocked; null when memory is short. A volume belongs to one thread at a time.
VolumeOwner CopyOf(Volume3D& volume);

VoxelType TypeOf(const Volume3D& volume);

VolumeSize SizeOf(const Volume3D& volume);

} // namespace z3d::tools
