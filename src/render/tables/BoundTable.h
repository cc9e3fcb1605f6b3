// Empty-space skipping: which stretches of a ray need not be looked at.
//
// Blocks of 4 x 4 x 4 voxels have codes (see BlockCoders). The bound of a block is the largest code of all blocks
// that a stretch of 16 samples can touch whose first sample lies in it.
//
// Which blocks those are. A coordinate p is sampled at index floor(p + 0.49), which lies in block
// floor((p + 4.49) / 4), counted from one border block before the volume. Let the first sample's quotient lie
// surely within a block: by d on either side. Sample t's is larger by t s / 4, s being the step of the ray, up to
// e / 4 for the rounding of 15 additions. So sample t's block lies between floor(d + (t s - e) / 4) and
// ceil(1 - d + (t s + e) / 4) - 1 blocks on. d is larger than e / 4, so these are at most one block apart, and for
// the first sample the same block. The bound is taken over codes that have been dilated by the width of this range, at
// half a dozen block offsets. Indexes beyond the volume are sampled at its border: blocks repeat there, one axis at a
// time, exactly as indexes are clamped.
#pragma once

#include "platform/Heap.h"
#include "render/Projection.h"
#include "render/Traversal.h"
#include "render/tables/BlockExtent.h"
#include "render/tables/Measure.h"
#include "render/tables/SampledBlocks.h"
#include "render/voxels/ValueInterval.h"

#include <cstddef>
#include <cstdint>

namespace z3d::render {

// What a mode wants to know of the voxels ahead.
struct TableSubject {
    bool isColour;          // 3 bytes per voxel, and windows of channel sums
    ValueInterval accepted; // by the window; not empty
    Measure measure;
    bool backToFront;
    std::int32_t margin; // see RayShape
};

class BoundTable {
public:
    // Nothing is allocated yet.
    BoundTable(const Projection& projection, const TableSubject& subject);
    ~BoundTable();
    BoundTable(const BoundTable&) = delete;
    BoundTable& operator=(const BoundTable&) = delete;

    // Whether there can be a table. Block coordinates must fit into 15 bits, places of bounds into 31. A stretch must
    // not reach beyond the padding of a row: matrices that lengthen a ray's step, which hosts may pass, get no table.
    bool IsPossible() const;

    // Allocates and fills the table; false when memory is short, and then there is none.
    bool Make();

    // How many voxels Make has to look at.
    Z3D_INLINE double SampledVoxels() const { return sampled_.Voxels(); }

    // No voxel has a larger measure in this channel. 255 before the table is made.
    Z3D_INLINE std::uint8_t Highest(int channel) const { return highest_[channel]; }

    // What a look-up needs (see BoundLookup).
    Z3D_INLINE const std::uint8_t* Bounds() const { return bounds_; }
    Z3D_INLINE const BlockExtent& Extent() const { return extent_; }
    // The largest distance from the middle of its block, in blocks, at which a position is surely in it.
    Z3D_INLINE double LargestOffCentre() const { return 0.5 - surely_ - rounding_ / 16; }

private:
    // 15 steps and their rounding (at most 0.13) stay within 16 voxels: 4 blocks.
    static constexpr float kLongestStep = 1.03125f;

    struct Offset {
        std::int32_t axis[3];
        bool operator==(const Offset&) const = default;
    };

    void FindOffsets();
    template <class Coder>
    void FillWith(Coder& coder);
    std::int32_t FirstCoded(int axis) const;
    void Dilate(std::int32_t z) const;
    void FormBounds(std::int32_t z) const;
    std::uint8_t* CodeLayer(std::int32_t z) const;
    std::uint8_t* CodeRow(std::int32_t y, std::int32_t z) const;
    void MergeRow(std::uint8_t* row, const std::uint8_t* next) const;

    const VoxelGrid& grid_;
    const TableSubject subject_;
    const BlockExtent extent_;
    const SampledBlocks sampled_;
    float step_[3];
    double rounding_; // of a coordinate, over a stretch
    double surely_;   // d of the argument above
    Offset offset_[kSamples];
    int offsets_ = 0;
    std::int32_t reach_[3] = {0, 0, 0}; // by which codes are dilated
    std::int32_t farthest_ = 0;         // offset along z
    std::uint8_t highest_[3] = {255, 255, 255};
    platform::HeapArray<std::uint8_t> memory_;
    std::uint8_t* codes_ = nullptr;
    std::uint8_t* bounds_ = nullptr;
};

} // namespace z3d::render
