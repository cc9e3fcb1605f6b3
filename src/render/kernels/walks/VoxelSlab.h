// A part of the volume laid out anew: voxels of the y or z axis side by side, so that they are reduced together as
// those of a row are. Thirty-two of them, or sixteen colours: a slab of a head stays in the cache, and its memory
// serves for the next one.
#pragma once

#include "platform/Heap.h"
#include "render/kernels/vector/Vector.h"
#include "render/voxels/VoxelGrid.h"

namespace z3d::render::Z3D_ISA {

class VoxelSlab {
public:
    static constexpr std::int32_t kMostLanes = 32;
    static constexpr std::int32_t LanesOf(std::int32_t voxelBytes) {
        return voxelBytes == 1 ? kMostLanes : kMostLanes / 2;
    }

    // Which voxels there are on the two other axes: x, and the one that is left.
    struct Extent {
        std::int32_t first[2];
        std::int32_t last[2];
    };

    VoxelSlab(const VoxelGrid& grid, int axis, std::int32_t voxelBytes, const Extent& extent);

    // False where memory is short.
    bool Allocate();

    // How many voxels are laid out side by side.
    std::int32_t Lanes() const { return lanes_; }

    // Lays out the voxels `first` to `last`, no more than that. What follows them is unspecified.
    void Fill(std::int32_t first, std::int32_t last);

    // The lanes at x = 0 for the other axis's voxel `other`; those at x follow `x` * Lanes() voxels behind. The
    // channels of a colour are Lanes() bytes apart.
    const std::uint8_t* LanesAt(std::uint32_t other) const {
        return memory_.Get() + (other - static_cast<std::uint32_t>(extent_.first[1])) * layerBytes_;
    }

private:
    static constexpr std::uint64_t kMostBytes = 64 << 20;

    std::size_t RowBytes() const {
        return static_cast<std::size_t>(grid_.width) * static_cast<std::size_t>(voxelBytes_);
    }
    [[gnu::noinline]] void FindRows(std::int32_t first, std::int32_t last, std::int32_t other,
                                    const std::uint8_t* (&rows)[kMostLanes]) const;
    void FillLayer(std::int32_t used, std::int32_t other, const std::uint8_t* const* rows,
                   const std::uint8_t* const* nextRows);
    void FillShortRows(const std::uint8_t* const* rows, std::uint8_t* to) const;

    const VoxelGrid& grid_;
    const int axis_;
    const std::int32_t voxelBytes_;
    const std::int32_t lanes_;
    const Extent extent_;
    const std::uint64_t layerBytesNeeded_;
    const std::size_t layerBytes_;
    platform::HeapArray<std::uint8_t> memory_;
};

} // namespace z3d::render::Z3D_ISA
