// What a table of bounds says about the stretches ahead of sixteen rays.
#pragma once

#include "render/StretchIndexes.h"
#include "render/kernels/vector/Gathers.h"
#include "render/tables/BoundTable.h"

namespace z3d::render::Z3D_ISA {

class BoundLookup {
public:
    // The table may be made later, but before the first look-up.
    BoundLookup(const BoundTable& table, const VoxelGrid& grid)
        : table_(table), isGathered_(grid.isGathered) {
        const BlockExtent& extent = table.Extent();
        const std::int32_t blocks[3] = {extent.blocksX, extent.blocksY, extent.blocksZ};
        for (int axis = 0; axis < 3; ++axis) {
            // The largest float below: its position within its block is never sure.
            last_[axis] = AllFloats(__builtin_nextafterf(static_cast<float>(blocks[axis]), 0));
        }
        half_ = AllFloats(0.5f);
        perBlock_ = AllFloats(1.0f / kBlockSide);
        firstBlock_ = AllFloats(1 + 0.49f / kBlockSide);
        largestOffCentre_ = AllFloats(static_cast<float>(table.LargestOffCentre()));
        factors_ = FactorsFor(static_cast<std::uint32_t>(extent.boundsStride));
        layerBytes_ = static_cast<std::uint32_t>(extent.boundsLayer);
    }

    // The bounds of sixteen stretches by the positions of their first samples. 255 where a position lies too close to
    // a face between blocks, or too far outside the volume, to be sure of its block.
    [[gnu::noinline]] Bytes BoundsAt(const Positions& positions) const {
        // Find the block of each position.
        alignas(64) std::uint32_t place[kRays];
        alignas(64) Ints sure[kRays / kFloatLanes];
        for (int part = 0; part < kRays / kFloatLanes; ++part) {
            const int lane = part * kFloatLanes;
            Floats offCentre = {};
            const Ints x = Block(LoadFloats(positions.axis[0] + lane), 0, offCentre);
            const Ints y = Block(LoadFloats(positions.axis[1] + lane), 1, offCentre);
            const Ints z = Block(LoadFloats(positions.axis[2] + lane), 2, offCentre);
            Store(place + lane, RowTimesWidth(y, x, factors_) + reinterpret_cast<Uints>(z) * layerBytes_);
            sure[part] = offCentre < largestOffCentre_;
        }

        // Look its bound up.
        const std::uint8_t* bounds = table_.Bounds();
        const Bytes isSure = NarrowMask(sure);
#if Z3D_VECTOR_BYTES == 64
        // Of four bytes the lowest: behind the last bound there is padding.
        if (isGathered_) return LowestBytes(GatherWords(bounds, LoadUints(place))) | ~isSure;
#endif
        alignas(16) std::uint8_t bound[kRays];
        for (int ray = 0; ray < kRays; ++ray)
            bound[ray] = bounds[place[ray]];
        return LoadBytes(bound) | ~isSure;
    }

private:
    Z3D_INLINE static Bytes NarrowMask(const Ints (&mask)[kRays / kFloatLanes]) {
#if Z3D_VECTOR_BYTES == 64
        return ToBytes(_mm_movm_epi8(_mm512_movepi32_mask(reinterpret_cast<__m512i>(mask[0]))));
#else
        const auto* quads = reinterpret_cast<const __m128i*>(mask);
        const __m128i low = _mm_packs_epi32(quads[0], quads[1]);
        const __m128i high = _mm_packs_epi32(quads[2], quads[3]);
        return render::NarrowMask({low, high});
#endif
    }

    // The block coordinate, and how far from the middle of a block the position lies; in blocks.
    Z3D_INLINE Ints Block(Floats position, int axis, Floats& offCentre) const {
        const Floats at = Min(Max(position * perBlock_ + firstBlock_, Floats{}), last_[axis]);
        const Ints block = Truncate(at);
        const Floats off = at - ToFloats(block) - half_;
        offCentre = Max(offCentre, Max(off, -off));
        return block;
    }

    const BoundTable& table_;
    [[maybe_unused]] const bool isGathered_;
    Floats last_[3];
    Floats half_;
    Floats perBlock_;
    Floats firstBlock_;
    Floats largestOffCentre_;
    Ints factors_;
    std::uint32_t layerBytes_;
};

} // namespace z3d::render::Z3D_ISA
