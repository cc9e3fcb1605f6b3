// Views whose rays run along a volume axis, turned about it by any angle: every ray takes one column of voxels, and
// all of them the same part of it. So each column is rendered once, in a view of right angles, and looked up.
#pragma once

#include "platform/Heap.h"
#include "render/kernels/vector/Vector.h"
#include "render/kernels/walks/Rule.h"

namespace z3d::render::Z3D_ISA {

class ColumnView {
public:
    explicit ColumnView(const Projection& projection);

    // False where rays do not run along an axis, or memory is short.
    bool Prepare();

    // The view of right angles, a pixel for every column of voxels.
    const Projection& Columns() const { return columns_; }

    // Fills the image, once the columns are rendered.
    void LookUp(const Rule& rule) const;

private:
    static constexpr std::uint64_t kMostBytes = 64 << 20;

    bool IsAlongAxis() const;
    void CropColumns();
    void LookUpPixels(const Doubles& px, double py, double depth, float* pixels, std::int32_t count) const;
    double FirstDepth(const Rule& rule) const;

    const Projection& projection_;
    const ProjectionRenderer& view_;
    const int axis_;      // that rays run along
    const int across_[2]; // the others, which become those of the picture
    ProjectionRenderer columnView_;
    Projection columns_;
    platform::HeapArray<float> pixels_;
};

} // namespace z3d::render::Z3D_ISA
