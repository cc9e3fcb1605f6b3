#include "render/tables/BlockExtent.h"

namespace z3d::render {

BlockExtent::BlockExtent(const VoxelGrid& grid)
    : blocksX(grid.width / kBlockSide + 2),
      blocksY(grid.height / kBlockSide + 2),
      blocksZ(grid.depth / kBlockSide + 2),
      layers(blocksZ < kMostLayers ? blocksZ : kMostLayers),
      stride((static_cast<std::size_t>(blocksX) + 2 * kReach + 31) / 16 * 16),
      layer(stride * static_cast<std::size_t>(blocksY)),
      boundsStride((static_cast<std::size_t>(blocksX) + 15) / 16 * 16),
      boundsLayer(boundsStride * static_cast<std::size_t>(blocksY)) {}

std::size_t BlockExtent::TableBytes(const VoxelGrid& grid) const {
    const std::uint64_t bytes = std::uint64_t{layer} * static_cast<std::uint32_t>(layers)
                                + std::uint64_t{boundsLayer} * static_cast<std::uint32_t>(blocksZ)
                                + 2 * kRowPadding;
    const std::uint64_t voxels = std::uint64_t{static_cast<std::uint32_t>(grid.width)}
                                 * static_cast<std::uint32_t>(grid.height)
                                 * static_cast<std::uint32_t>(grid.depth);
    constexpr std::uint64_t kSmall = 1 << 16;
    const bool fits = bytes <= 2 * voxels + kSmall && bytes < kNeverFits;
    return fits ? static_cast<std::size_t>(bytes) : kNeverFits;
}

} // namespace z3d::render
