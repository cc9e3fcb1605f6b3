// From a mode to its kernel, and from a volume to a rendered projection.
#pragma once

#include "Zentra3DRendering.h"

#include "render/KernelTable.h"

namespace z3d::render {

class ProjectionRenderer;
struct RenderArguments;

// Null for an unknown mode. Volumes of 3 bytes per voxel get the colour kernel, all others the grey one, which
// reads one byte per voxel. `extra` chooses between the two kinds of surface of mode 3.
Kernel* KernelOf(std::int32_t mode, const ::Volume3D& volume, float extra);

// Locks the volume, renders it with the kernel and unlocks it in every case. The locked pixels, which the
// caller owns, or null.
float* RenderWithKernel(Kernel* kernel, const ProjectionRenderer& renderer, const RenderArguments& arguments);

} // namespace z3d::render
