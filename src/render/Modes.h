// The render modes: one source file per mode, one kernel per voxel format.
#pragma once

#include "Zentra3DRendering.h"

#include <cstdint>

namespace z3d::render {

class ProjectionRenderer;
struct RenderArguments;

// Renders one projection: the locked pixels, which the host will own, or null. Leaves the volume unlocked.
using Kernel = float*(const ProjectionRenderer& renderer, const RenderArguments& arguments);

// Null for an unknown mode. Volumes of 3 bytes per voxel get the colour kernel, all others the grey one, which
// reads one byte per voxel. `extra` chooses between the two kinds of surface of mode 3.
Kernel* KernelOf(std::int32_t mode, const ::Volume3D& volume, float extra);

Kernel MaxProjectionGrey, MaxProjectionRgb;
Kernel MinProjectionGrey, MinProjectionRgb;
Kernel SumProjectionGrey, SumProjectionRgb;
Kernel FirstSurfaceGrey, FirstSurfaceRgb;
Kernel LayeredSurfaceGrey, LayeredSurfaceRgb;
Kernel TranslucentBlendGrey, TranslucentBlendRgb;
Kernel ContrastProjectionGrey, ContrastProjectionRgb;
Kernel FirstHitGrey, FirstHitRgb;

} // namespace z3d::render
