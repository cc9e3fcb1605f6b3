#include "render/RotProjection.h"

#include "frame/Volume3D.h"
#include "render/Modes.h"

namespace z3d::render {
namespace {

ProjectionRenderer* MakeRenderer(::Volume3D* volume, const float* rotation, const CropBox& crop,
                                 std::int32_t reserved) {
    if (volume == nullptr || rotation == nullptr) return nullptr;
    return new ProjectionRenderer(volume, rotation, crop, reserved);
}

void StoreNoSize(std::uint16_t* width, std::uint16_t* height) {
    if (width != nullptr) *width = 0;
    if (height != nullptr) *height = 0;
}

} // namespace

float* GetRotProjection(::Volume3D* volume, const float* rotation, std::int16_t mode, const CropBox& crop,
                        const RenderArguments& arguments, std::uint16_t* width, std::uint16_t* height,
                        std::int32_t reserved) {
    float* pixels = nullptr;
    ProjectionRenderer* renderer = MakeRenderer(volume, rotation, crop, reserved);
    if (renderer == nullptr) {
        StoreNoSize(width, height);
    } else {
        pixels = renderer->Render(mode, arguments, width, height);
        delete renderer;
    }
    // Kernels unlock what they locked; a failure before the kernel must not leave the volume otherwise.
    if (pixels == nullptr && volume != nullptr && KernelOf(mode, *volume, arguments.extra) != nullptr) {
        frame::GlobalUnlock3D(volume);
    }
    return pixels;
}

void GetRotDim(::Volume3D* volume, const float* rotation, const CropBox& crop, std::uint16_t* width,
               std::uint16_t* height, std::int32_t reserved) {
    ProjectionRenderer* renderer = MakeRenderer(volume, rotation, crop, reserved);
    if (renderer == nullptr) {
        StoreNoSize(width, height);
        return;
    }
    renderer->StoreSize(width, height);
    delete renderer;
}

} // namespace z3d::render
