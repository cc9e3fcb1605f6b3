#include "render/Modes.h"

namespace z3d::render {
namespace {

struct ModeKernels {
    Kernel colour;
    Kernel grey;
};

// Indexed by mode.
constexpr ModeKernels kModes[] = {
    {MaxProjectionRgb, MaxProjectionGrey},
};

std::uint32_t BytesPerVoxel(const ::Volume3D& volume) {
    if (volume.depth == 0 || volume.slices == nullptr || volume.slices[0] == nullptr) return 0;
    return volume.slices[0]->bytesPerPixel;
}

} // namespace

Kernel KernelOf(std::int32_t mode, const ::Volume3D& volume, float) {
    if (mode < 0 || mode >= static_cast<std::int32_t>(sizeof kModes / sizeof kModes[0])) return nullptr;
    return BytesPerVoxel(volume) == 3 ? kModes[mode].colour : kModes[mode].grey;
}

} // namespace z3d::render
