#include "render/Modes.h"

#include "platform/Heap.h"
#include "render/InstructionSet.h"
#include "render/LockedVolume.h"
#include "render/ProjectionImage.h"
#include "render/ProjectionJob.h"
#include "render/ProjectionRenderer.h"

#include <algorithm>

namespace z3d::render {
namespace {

std::uint32_t BytesPerVoxel(const ::Volume3D& volume) {
    if (volume.depth == 0 || volume.slices == nullptr || volume.slices[0] == nullptr) return 0;
    return volume.slices[0]->bytesPerPixel;
}

RayGeometry GeometryOf(const ProjectionRenderer& renderer) {
    RayGeometry geometry;
    std::copy_n(renderer.inverseRotation2, 9, geometry.inverse);
    std::copy_n(renderer.rotation2 + 6, 3, geometry.view);
    std::copy_n(renderer.volumeCentre, 3, geometry.centre);
    std::copy_n(renderer.outputHalfSize, 3, geometry.halfSize);
    std::reverse_copy(renderer.cropLow, renderer.cropLow + 3, geometry.cropLow);
    std::reverse_copy(renderer.cropHigh, renderer.cropHigh + 3, geometry.cropHigh);
    geometry.outputWidth = renderer.outputWidth;
    geometry.outputHeight = renderer.outputHeight;
    geometry.outputDepth = renderer.outputDepth;
    return geometry;
}

} // namespace

Kernel* KernelOf(std::int32_t mode, const ::Volume3D& volume, float extra) {
    if (mode < 0 || mode >= kModeCount) return nullptr;
    // Written so that a number that is none selects the first surface.
    const bool isLayered = mode == kSurfaceMode && (extra < 0 || extra > 0);
    const KernelTable& table = CurrentKernels();
    const ModeKernels& kernels = isLayered ? table.layeredSurface : table.modes[mode];
    return BytesPerVoxel(volume) == 3 ? kernels.colour : kernels.grey;
}

float* RenderWithKernel(Kernel* kernel, const ProjectionRenderer& renderer,
                        const RenderArguments& arguments) {
    const LockedVolume volume(*renderer.volume);
    if (!volume) return nullptr;
    ProjectionImage image(renderer.outputWidth, renderer.outputHeight);
    if (!image) return nullptr;
    const platform::HeapArray<std::int32_t> rowScratch(RowScratchInts(renderer.outputWidth));
    const platform::HeapArray<std::uint8_t> stripScratch(StripScratchBytes(renderer.outputWidth));
    if (!rowScratch || !stripScratch) return nullptr;
    const VoxelGrid grid = {volume.Slices(), renderer.volumeWidth, renderer.volumeHeight,
                            renderer.volumeDepth};
    // Without it, rendering is slower and the same.
    const platform::HeapArray<std::uint8_t> skipMemory(SkipTableBytes(grid));

    const ProjectionJob job = {
        GeometryOf(renderer),
        {volume.Slices(), renderer.volumeWidth, renderer.volumeHeight, renderer.volumeDepth},
        arguments.high,
        arguments.low,
        arguments.extra,
        image.Pixels(),
        rowScratch.Get(),
        stripScratch.Get(),
        skipMemory.Get(),
        CurrentSkipPolicy()};
    kernel(job);
    return image.Release();
}

} // namespace z3d::render
