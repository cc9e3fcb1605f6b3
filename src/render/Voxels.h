// Voxel addressing and sampling, and the window tests on what is found.
#pragma once

#include <cstddef>
#include <cstdint>

namespace z3d::render {

// The locked voxels of a volume.
struct VoxelGrid {
    const std::uint8_t* const* slices; // `depth` addresses; the rows of a slice follow each other
    std::int32_t width;
    std::int32_t height;
    std::int32_t depth;

    // The bytes of voxel (x, y, z), which must exist.
    template <std::size_t kBytesPerVoxel>
    const std::uint8_t* At(std::int32_t x, std::int32_t y, std::int32_t z) const {
        const std::size_t index =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
        return slices[z] + index * kBytesPerVoxel;
    }
};

// A voxel of each format: how many bytes, and the value that windows test.
struct Grey {
    static constexpr std::size_t kBytes = 1;
    static std::int32_t Value(const std::uint8_t* voxel) { return voxel[0]; }
};
struct Rgb {
    static constexpr std::size_t kBytes = 3;
    static std::int32_t Value(const std::uint8_t* voxel) { return voxel[0] + voxel[1] + voxel[2]; }
};

// Windows are written so that a bound that is not a number accepts nothing.
struct InclusiveWindow {
    float low;
    float high;
    bool Contains(std::int32_t value) const {
        return static_cast<float>(value) >= low && static_cast<float>(value) <= high;
    }
};
struct StrictWindow {
    float low;
    float high;
    bool Contains(std::int32_t value) const {
        return static_cast<float>(value) > low && static_cast<float>(value) < high;
    }
};

// The voxel nearest to a coordinate, for an axis of `size` voxels. 0.49 rather than 0.5: a coordinate halfway
// between two voxels goes to the lower one. Coordinates beyond the volume take its border voxel; clamping
// before the truncation keeps every coordinate within the range of an integer.
inline std::int32_t NearestVoxel(double coordinate, std::int32_t size) {
    const double shifted = coordinate + 0.49;
    if (!(shifted > 0)) return 0;
    if (shifted >= size) return size - 1;
    return static_cast<std::int32_t>(shifted);
}

inline std::int32_t ClampToAxis(std::int32_t index, std::int32_t size) {
    if (index < 0) return 0;
    return index < size ? index : size - 1;
}

} // namespace z3d::render
