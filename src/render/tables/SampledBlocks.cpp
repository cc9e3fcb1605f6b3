#include "render/tables/SampledBlocks.h"

#include "render/ViewProducts.h"
#include "render/tables/BlockExtent.h"

namespace z3d::render {
namespace {

std::int32_t IndexBelow(double coordinate, std::int32_t end) {
    if (!(coordinate > 0)) return 0;
    return coordinate < end ? static_cast<std::int32_t>(coordinate) : end;
}

} // namespace

// A ray is sampled at the whole depths between its ends in the crop box, at most one before and two behind them; the
// nearest voxel is half a voxel away at most. For a rotation a depth is a voxel along the ray. Where it is one only
// nearly, all depths are off by up to the deviation times the size of the output. Other matrices may lead anywhere.
SampledBlocks::SampledBlocks(const ProjectionRenderer& view, const VoxelGrid& grid) {
    const std::int32_t sizes[3] = {grid.width, grid.height, grid.depth};
    const bool isKnown = ViewProducts(view).AreNearlyThoseOfARotation();
    const double reach =
        static_cast<double>(view.outputHalfSize[0]) + view.outputHalfSize[1] + view.outputHalfSize[2];
    const double margin = 4 + 2 * ViewProducts::kDeviation * reach;
    for (int axis = 0; axis < 3; ++axis) {
        const std::int32_t end = sizes[axis] - 1;
        const double low = static_cast<double>(view.CropLow(axis)) + view.volumeCentre[axis] - margin;
        const double high = static_cast<double>(view.CropHigh(axis)) + view.volumeCentre[axis] + margin;
        const bool isCropped = isKnown && low <= high;
        first[axis] = 1 + (isCropped && low > 0 ? IndexBelow(low, end) : 0) / kBlockSide;
        last[axis] = 1 + (isCropped && high < end ? IndexBelow(high, end) : end) / kBlockSide;
    }
}

double SampledBlocks::Voxels() const {
    double voxels = kBlockSide * kBlockSide * kBlockSide;
    for (int axis = 0; axis < 3; ++axis)
        voxels *= last[axis] - first[axis] + 1;
    return voxels;
}

} // namespace z3d::render
