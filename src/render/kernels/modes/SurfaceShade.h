// The shade of a surface voxel: how far its intensity gradient points along the viewing direction.
#pragma once

#include "render/Projection.h"
#include "render/kernels/sampling/Formats.h"

namespace z3d::render::Z3D_ISA {

// Volumes of fewer slices have no gradient along z: their surfaces are not shaded.
constexpr std::int32_t kSmallestShadedDepth = 3;

template <class Format>
class SurfaceShade {
public:
    explicit SurfaceShade(const Projection& projection) : grid_(projection.grid), view_(projection.view) {}

    bool IsShaded() const { return grid_.depth >= kSmallestShadedDepth; }

    // Adds one surface point to a ray's pixel: its shade, scaled by the weight and, in colour, by each channel's
    // share of the sum. Doubles within the term, which enters the pixel with one rounding.
    [[gnu::noinline]] void AddTo(float (&shown)[Format::kChannels][kRays], const SamplePlace& at, int ray,
                                 float weight) const {
        const auto width = static_cast<std::uint32_t>(grid_.width);
        const auto x = static_cast<std::int32_t>(at.Plane(ray) % width);
        const auto y = static_cast<std::int32_t>(at.Plane(ray) / width);
        const auto z = static_cast<std::int32_t>(at.Z(ray));
        const double shade = IsShaded() ? Shade(x, y, z) : 1.0;
        if constexpr (Format::kBytes == 1) {
            shown[0][ray] = static_cast<float>(shown[0][ray] + weight * shade);
        } else {
            const std::uint8_t* voxel = grid_.At<Format::kBytes>(x, y, z);
            for (int c = 0; c < 3; ++c) {
                shown[c][ray] =
                    static_cast<float>(shown[c][ray] + voxel[c] * shade * weight / Format::ValueOf(voxel));
            }
        }
    }

private:
    // |g . view| / |g| for the central difference g of the voxel values. 0 where the neighbourhood is flat. In
    // [0, 1] for a view of unit length; front and back faces are alike.
    double Shade(std::int32_t x, std::int32_t y, std::int32_t z) const {
        const double gx = ValueAt(x + 1, y, z) - ValueAt(x - 1, y, z);
        const double gy = ValueAt(x, y + 1, z) - ValueAt(x, y - 1, z);
        const double gz = ValueAt(x, y, z + 1) - ValueAt(x, y, z - 1);
        // Rounded to single precision before the root is taken.
        const double squared = static_cast<float>(gz * gz + gy * gy + gx * gx);
        if (!(squared > 0)) return 0;
        return __builtin_fabs(gz * view_.ViewAxis(2) + gy * view_.ViewAxis(1) + gx * view_.ViewAxis(0))
               / __builtin_sqrt(squared);
    }

    // Axes too short for an inner voxel have neighbours beyond the border: they repeat it.
    std::int32_t ValueAt(std::int32_t x, std::int32_t y, std::int32_t z) const {
        return Format::ValueOf(grid_.At<Format::kBytes>(
            ClampToAxis(x, grid_.width), ClampToAxis(y, grid_.height), ClampToAxis(z, grid_.depth)));
    }

    const VoxelGrid& grid_;
    const ProjectionRenderer& view_;
};

} // namespace z3d::render::Z3D_ISA
