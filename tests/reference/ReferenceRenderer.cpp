#include "reference/ReferenceRenderer.h"

#include "reference/ReferenceModes.h"

#include "Zentra3DRendering.h"

#include <bit>

namespace z3d::reference {

namespace {

using Kernel = void (*)(const Scene& scene, std::vector<float>& pixels);

// Not a number counts as 0 and selects the first surface; a denormal is not 0.
Kernel SelectSurface(bool colour, float extra) {
    const bool layered = extra < 0.0f || extra > 0.0f;
    if (layered) return colour ? LayeredSurfaceRgb : LayeredSurfaceGrey;
    return colour ? FirstSurfaceRgb : FirstSurfaceGrey;
}

// Null for an unknown mode.
Kernel SelectKernel(int mode, bool colour, float extra) {
    switch (mode) {
    case RenderModeMaximum:
        return colour ? MaxProjectionRgb : MaxProjectionGrey;
    case RenderModeMinimum:
        return colour ? MinProjectionRgb : MinProjectionGrey;
    case RenderModeSum:
        return colour ? SumProjectionRgb : SumProjectionGrey;
    case RenderModeSurface:
        return SelectSurface(colour, extra);
    case RenderModeBlend:
        return colour ? TranslucentBlendRgb : TranslucentBlendGrey;
    case RenderModeContrast:
        return colour ? ContrastProjectionRgb : ContrastProjectionGrey;
    case RenderModeFirstHit:
        return colour ? FirstHitRgb : FirstHitGrey;
    default:
        return nullptr;
    }
}

// A viewing direction longer than this would take more than a thousand samples per voxel.
constexpr double kLongestViewAxis = 1024.0;

bool IsTooLong(const Matrix& rotation) {
    const double x = Element(rotation, 2, 0);
    const double y = Element(rotation, 2, 1);
    const double z = Element(rotation, 2, 2);
    return x * x + y * y + z * z > kLongestViewAxis * kLongestViewAxis;
}

} // namespace

Projection Render(const Volume& volume, const Request& request) {
    Projection projection;
    const std::optional<Frame> frame = BuildFrame(volume, request);
    if (!frame) return projection;
    projection.width = frame->outputSize[0];
    projection.height = frame->outputSize[1];
    projection.depth = frame->outputSize[2];

    const float extra = std::bit_cast<float>(request.extraBits);
    const Kernel kernel = SelectKernel(request.mode, volume.bytesPerVoxel == 3, extra);
    if (kernel == nullptr || IsTooLong(frame->rotation)) return projection;

    // Pixels of 12 bytes have to fit a block whose size has 32 bits.
    const std::uint64_t pixelCount =
        static_cast<std::uint64_t>(projection.width) * static_cast<std::uint64_t>(projection.height);
    if (pixelCount > 0xFFFFFFFFu / 12) return projection;

    projection.pixels.assign(static_cast<std::size_t>(pixelCount) * 3, 0.0f);
    kernel(Scene{volume, *frame, request.high, request.low, extra}, projection.pixels);
    projection.rendered = true;
    return projection;
}

} // namespace z3d::reference
