#include "support/ProductRenderer.h"

#include "platform/GlobalMemory.h"
#include "render/RotProjection.h"
#include "support/HostVolume.h"

#include <bit>
#include <cstddef>

namespace z3d::test {

void FreeProjection(float* pixels) {
    const platform::BlockHandle block = platform::BlockFromAddress(pixels);
    platform::BlockUnlock(block);
    platform::BlockFree(block);
}

float* RenderPixels(::Volume3D* volume, const reference::Request& request, std::uint16_t& width,
                    std::uint16_t& height) {
    const render::CropBox crop = {request.x0 - 1, request.x1 - 1, request.y0 - 1,
                                  request.y1 - 1, request.z0 - 1, request.z1 - 1};
    const render::RenderArguments arguments = {request.high, request.low,
                                               std::bit_cast<float>(request.extraBits)};
    return render::GetRotProjection(volume, request.rotation.data(), request.mode, crop, arguments, &width,
                                    &height, 0);
}

reference::Projection RenderProduct(::Volume3D* volume, const reference::Request& request) {
    std::uint16_t width = 0xAAAA;
    std::uint16_t height = 0xAAAA;
    float* pixels = RenderPixels(volume, request, width, height);
    reference::Projection projection;
    projection.width = width;
    projection.height = height;
    projection.rendered = pixels != nullptr;
    if (pixels != nullptr) {
        const std::size_t floats = std::size_t{width} * height * 3;
        projection.pixels.assign(pixels, pixels + floats);
        FreeProjection(pixels);
    }
    return projection;
}

reference::Projection RenderProduct(const reference::Volume& volume, const reference::Request& request) {
    const HostVolume hostVolume(volume);
    return RenderProduct(hostVolume.Get(), request);
}

} // namespace z3d::test
