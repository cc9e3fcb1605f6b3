#include "render/RotProjection.h"

#include "frame/Volume3D.h"
#include "render/InstructionSet.h"

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
    ProjectionRenderer* renderer = MakeRenderer(volume, rotation, crop, reserved);
    if (renderer == nullptr) {
        StoreNoSize(width, height);
        // A mode that exists leaves the volume unlocked, whatever fails.
        const bool isMode = KernelsOfMode(CurrentKernels(), mode, arguments.extra) != nullptr;
        if (isMode && volume != nullptr) frame::GlobalUnlock3D(volume);
        return nullptr;
    }
    float* pixels = renderer->Render(mode, arguments, width, height);
    delete renderer;
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
