// The shade of a surface voxel: how far its intensity gradient points along the viewing direction.
#pragma once

#include "render/Voxels.h"

#include <cmath>

namespace z3d::render {

// Volumes of fewer slices have no gradient along z: their surfaces are not shaded.
constexpr std::int32_t kSmallestShadedDepth = 3;

// |g . view| / |g| for the central difference g of the voxel values (grey: the byte; colour: the channel sum).
// 0 where the neighbourhood is flat. In [0, 1] for a view of unit length; front and back faces are alike.
template <class Voxel>
double SurfaceShade(const VoxelGrid& grid, std::int32_t x, std::int32_t y, std::int32_t z,
                    const float* view) {
    const auto value = [&grid](std::int32_t nx, std::int32_t ny, std::int32_t nz) {
        return Voxel::Value(grid.At<Voxel::kBytes>(ClampToAxis(nx, grid.width), ClampToAxis(ny, grid.height),
                                                   ClampToAxis(nz, grid.depth)));
    };
    const double gx = value(x + 1, y, z) - value(x - 1, y, z);
    const double gy = value(x, y + 1, z) - value(x, y - 1, z);
    const double gz = value(x, y, z + 1) - value(x, y, z - 1);
    // Rounded to single precision before the root is taken.
    const auto squared = static_cast<float>(gz * gz + gy * gy + gx * gx);
    if (!(squared > 0)) return 0;
    return std::fabs(gz * view[2] + gy * view[1] + gx * view[0]) / std::sqrt(static_cast<double>(squared));
}

} // namespace z3d::render
