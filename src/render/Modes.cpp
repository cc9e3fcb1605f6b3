#include "render/Modes.h"

#include <cstddef>

namespace z3d::render {
namespace {

struct ModeKernels {
    Kernel* colour;
    Kernel* grey;
};

// Indexed by mode.
constexpr ModeKernels kModes[] = {
    {MaxProjectionRgb, MaxProjectionGrey},
    {MinProjectionRgb, MinProjectionGrey},
    {SumProjectionRgb, SumProjectionGrey},
    {FirstSurfaceRgb, FirstSurfaceGrey},
    {TranslucentBlendRgb, TranslucentBlendGrey},
    {ContrastProjectionRgb, ContrastProjectionGrey},
    {FirstHitRgb, FirstHitGrey},
};
constexpr std::int32_t kModeCount = sizeof kModes / sizeof kModes[0];

constexpr std::int32_t kSurfaceMode = 3;
constexpr ModeKernels kLayeredSurface = {LayeredSurfaceRgb, LayeredSurfaceGrey};

std::uint32_t BytesPerVoxel(const ::Volume3D& volume) {
    if (volume.depth == 0 || volume.slices == nullptr || volume.slices[0] == nullptr) return 0;
    return volume.slices[0]->bytesPerPixel;
}

} // namespace

Kernel* KernelOf(std::int32_t mode, const ::Volume3D& volume, float extra) {
    if (mode < 0 || mode >= kModeCount) return nullptr;
    // Written so that a number that is none selects the first surface.
    const bool isLayered = mode == kSurfaceMode && (extra < 0 || extra > 0);
    const ModeKernels& kernels = isLayered ? kLayeredSurface : kModes[mode];
    return BytesPerVoxel(volume) == 3 ? kernels.colour : kernels.grey;
}

} // namespace z3d::render
