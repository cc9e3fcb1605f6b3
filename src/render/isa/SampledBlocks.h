// The blocks of 2 x 2 x 2 voxels that rays can sample: those in and around the crop box.
#pragma once

#include "render/ProjectionJob.h"
#include "render/isa/ViewProducts.h"

namespace z3d::render::Z3D_ISA {

// Blocks are counted from one border block before the volume.
struct SampledBlocks {
    std::int32_t first[3];
    std::int32_t last[3];

    // A ray is sampled at the whole depths between its ends in the crop box, at most one before and two behind them;
    // the nearest voxel is half a voxel away at most. For a rotation a depth is a voxel along the ray. Where it is
    // one only nearly, all depths are off by up to the deviation times the size of the output. Other matrices may
    // lead anywhere.
    explicit SampledBlocks(const ProjectionJob& job) {
        const RayGeometry& geometry = job.geometry;
        const std::int32_t sizes[3] = {job.grid.width, job.grid.height, job.grid.depth};
        const bool isKnown = ViewProducts(geometry).AreNearlyThoseOfARotation();
        const double reach =
            static_cast<double>(geometry.halfSize[0]) + geometry.halfSize[1] + geometry.halfSize[2];
        const double margin = 4 + 2 * ViewProducts::kDeviation * reach;
        for (int axis = 0; axis < 3; ++axis) {
            const std::int32_t end = sizes[axis] - 1;
            const double low = static_cast<double>(geometry.cropLow[axis]) + geometry.centre[axis] - margin;
            const double high = static_cast<double>(geometry.cropHigh[axis]) + geometry.centre[axis] + margin;
            const bool isCropped = isKnown && low <= high;
            first[axis] = 1 + (isCropped && low > 0 ? IndexBelow(low, end) : 0) / 2;
            last[axis] = 1 + (isCropped && high < end ? IndexBelow(high, end) : end) / 2;
        }
    }

    double Voxels() const {
        double voxels = 8;
        for (int axis = 0; axis < 3; ++axis)
            voxels *= last[axis] - first[axis] + 1;
        return voxels;
    }

private:
    static std::int32_t IndexBelow(double coordinate, std::int32_t end) {
        if (!(coordinate > 0)) return 0;
        return coordinate < end ? static_cast<std::int32_t>(coordinate) : end;
    }
};

} // namespace z3d::render::Z3D_ISA
