// How each voxel format is fetched and windowed.
#pragma once

#include "render/kernels/sampling/Fetch.h"
#include "render/voxels/Windows.h"

namespace z3d::render::Z3D_ISA {

// A format says what sixteen voxels are (Sample), where stretches of them come from (Source, Fetch, SampleOf), and what
// a window on them is (Window, Accepts). Rows of voxels can be loaded where kBytes is not 0.
struct Grey {
    static constexpr int kBytes = 1;
    static constexpr int kChannels = 1;
    static constexpr std::int32_t kLargest = kLargestGrey;
    static constexpr bool kKeepsPositions = false;
    using Window = GreyWindow;
    using Source = VoxelGrid;
    using Sample = GreyVoxels;
    using Samples = Stretch<1>;
    Z3D_INLINE static const Sample& SampleOf(const Samples& samples, int number) {
        return samples.sample[number];
    }
    // Any window on bytes, for formats that have another one.
    template <class ByteWindow>
    Z3D_INLINE static Bytes Accepts(const ByteWindow& window, const Samples& samples, int number) {
        return window.Accepts(samples.sample[number]);
    }
    Z3D_INLINE static std::int32_t ValueOf(const std::uint8_t* voxel) { return voxel[0]; }
};

struct Rgb {
    static constexpr int kBytes = 3;
    static constexpr int kChannels = 3;
    static constexpr std::int32_t kLargest = kLargestSum;
    static constexpr bool kKeepsPositions = false;
    using Window = RgbWindow;
    using Source = VoxelGrid;
    using Sample = RgbVoxels;
    using Samples = ColourWords;
    Z3D_INLINE static Sample SampleOf(const Samples& samples, int number) {
        return SplitWords(samples.sample[number]);
    }
    Z3D_INLINE static Bytes Accepts(const Window& window, const Samples& samples, int number) {
        if (window.IsFull()) return AllBytes(0xFF);
        return window.AcceptsSums(SumsOfWords(samples.sample[number]));
    }
    Z3D_INLINE static std::int32_t ValueOf(const std::uint8_t* voxel) {
        return voxel[0] + voxel[1] + voxel[2];
    }
};

// Where the samples of a stretch lie, for modes that look at neighbours.
struct SamplePlace {
    const Indexes* indexes;
    int sample;
    std::uint32_t Z(int ray) const { return indexes->z[sample][ray]; }
    std::uint32_t Plane(int ray) const { return indexes->plane[sample][ray]; }
};

} // namespace z3d::render::Z3D_ISA
