// The render modes: one source file per mode, one kernel per mode and voxel format.
#pragma once

#include "Zentra3DRendering.h"

#include <cstdint>

namespace z3d::render {

class ProjectionRenderer;
struct RenderArguments;

// Renders one projection: the locked pixels, which the host will own, or null. Leaves the volume unlocked.
using Kernel = float* (*)(const ProjectionRenderer& renderer, const RenderArguments& arguments);

constexpr std::int32_t kModeCount = 7;

// Null for a mode that is unknown or has no kernels. Volumes of 3 bytes per voxel get the colour kernel, all
// others the grey one. `extra` chooses between the two kinds of surface of mode 3.
Kernel KernelOf(std::int32_t mode, const ::Volume3D& volume, float extra);

float* MaxProjectionGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments);
float* MaxProjectionRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments);

} // namespace z3d::render
