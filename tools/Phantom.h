// A made-up head, for trying things out without a scan: x to its left, y to its face, z to its crown.
#pragma once

#include "Volume.h"

namespace z3d::tools {

VolumeOwner MakePhantom(const VolumeSize& size, VoxelType type);

} // namespace z3d::tools
