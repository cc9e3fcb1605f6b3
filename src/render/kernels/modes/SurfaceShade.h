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
    explicit SurfaceShade(const Projection& projection)
        : grid_(projection.grid),
          view_(projection.view),
          x_(NeighboursOf(grid_.width, Format::kBytes)),
          y_(NeighboursOf(grid_.height, Format::kBytes * std::ptrdiff_t{grid_.width})) {}

    bool IsShaded() const { return grid_.depth >= kSmallestShadedDepth; }

    // Adds one surface point to a ray's pixel: its shade, scaled by the weight and, in colour, by each channel's
    // share of the sum. Doubles within the term, which enters the pixel with one rounding.
    [[gnu::noinline]] void AddTo(float (&shown)[Format::kChannels][kRays], const SamplePlace& at, int ray,
                                 float weight) const {
        const std::uint8_t* const* slice = grid_.slices + at.Z(ray);
        const std::size_t offset = std::size_t{at.Plane(ray)} * Format::kBytes;
        const double shade = IsShaded() ? Shade(slice, offset) : 1.0;
        if constexpr (Format::kBytes == 1) {
            shown[0][ray] = static_cast<float>(shown[0][ray] + weight * shade);
        } else {
            const std::uint8_t* voxel = *slice + offset;
            for (int c = 0; c < 3; ++c) {
                shown[c][ray] =
                    static_cast<float>(shown[c][ray] + voxel[c] * shade * weight / Format::ValueOf(voxel));
            }
        }
    }

private:
    // How far, in bytes, the neighbours along an axis lie from a sampled voxel.
    struct Neighbours {
        std::ptrdiff_t below;
        std::ptrdiff_t above;
    };

    // Only inner voxels are sampled: both neighbours exist. On axes too short for an inner voxel the first one is
    // sampled (see SampledIndexes), and repeats beyond the border.
    static Neighbours NeighboursOf(std::int32_t size, std::ptrdiff_t step) {
        return {size >= 3 ? -step : 0, size >= 2 ? step : 0};
    }

    // |g . view| / |g| for the central difference g of the voxel values. 0 where the neighbourhood is flat. In
    // [0, 1] for a view of unit length; front and back faces are alike.
    double Shade(const std::uint8_t* const* slice, std::size_t offset) const {
        const std::uint8_t* voxel = *slice + offset;
        const double gx = Format::ValueOf(voxel + x_.above) - Format::ValueOf(voxel + x_.below);
        const double gy = Format::ValueOf(voxel + y_.above) - Format::ValueOf(voxel + y_.below);
        const double gz = Format::ValueOf(slice[1] + offset) - Format::ValueOf(slice[-1] + offset);
        // Rounded to single precision before the root is taken.
        const double squared = static_cast<float>(gz * gz + gy * gy + gx * gx);
        if (!(squared > 0)) return 0;
        return __builtin_fabs(gz * view_.ViewAxis(2) + gy * view_.ViewAxis(1) + gx * view_.ViewAxis(0))
               / __builtin_sqrt(squared);
    }

    const VoxelGrid& grid_;
    const ProjectionRenderer& view_;
    const Neighbours x_;
    const Neighbours y_;
};

} // namespace z3d::render::Z3D_ISA
