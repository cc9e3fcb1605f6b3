// A made-up head, for trying things out without a scan: x to its left, y to its face, z to its crown.
#pragma once

#include <functional>

#include "Volume.h"

namespace z3d::tools {

// `progress` is told now and then which part is done, 0 to 1; false from it ends in a Failure.
VolumeOwner MakePhantom(const VolumeSize& size, VoxelType type,
                        const std::function<bool(double)>& progress = {});

} // namespace z3d::tools
