// The two calls behind the exports of the same names. The public header states their contract.
#pragma once

#include "render/ProjectionRenderer.h"

namespace z3d::render {

// The projection's pixels, locked and owned by the caller, or null. Sizes are stored where they are known. A
// volume that was to be rendered is unlocked afterwards; a mode without kernels leaves its lock state alone.
float* GetRotProjection(::Volume3D* volume, const float* rotation, std::int16_t mode, const CropBox& crop,
                        const RenderArguments& arguments, std::uint16_t* width, std::uint16_t* height,
                        std::int32_t reserved);

// Stores the size of the projection, or 0 and 0 where there is none.
void GetRotDim(::Volume3D* volume, const float* rotation, const CropBox& crop, std::uint16_t* width,
               std::uint16_t* height, std::int32_t reserved);

} // namespace z3d::render
