#include "render/KernelTable.h"

#include "Zentra3DRendering.h"

namespace z3d::render {

const ModeKernels* KernelsOfMode(const KernelTable& table, std::int32_t mode, float extra) {
    switch (mode) {
    case RenderModeMaximum:
        return &table.maximum;
    case RenderModeMinimum:
        return &table.minimum;
    case RenderModeSum:
        return &table.sum;
    case RenderModeSurface:
        // A NaN selects the first surface, as 0 does.
        return extra < 0 || extra > 0 ? &table.layeredSurface : &table.firstSurface;
    case RenderModeBlend:
        return &table.blend;
    case RenderModeContrast:
        return &table.contrast;
    case RenderModeFirstHit:
        return &table.firstHit;
    default:
        return nullptr;
    }
}

} // namespace z3d::render
