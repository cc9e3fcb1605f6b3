// Colour voxels together with their neighbours one output column to the right.
#pragma once

#include "render/Projection.h"
#include "render/kernels/sampling/Formats.h"

namespace z3d::render::Z3D_ISA {

// Where the neighbours lie. A neighbour is the voxel nearest to the unrounded position moved by one column, in
// doubles. Single precision finds it too, unless the moved coordinate is so close to a border between voxels that
// roundings decide: then the doubles are asked.
class SideStep {
public:
    explicit SideStep(const Projection& projection) : grid_(projection.grid) {
        const std::int32_t sizes[3] = {grid_.width, grid_.height, grid_.depth};
        float largest = 0;
        for (int axis = 0; axis < 3; ++axis) {
            size_[axis] = sizes[axis];
            step_[axis] = projection.view.Inverse(axis, 0);
            const auto size = static_cast<float>(sizes[axis]);
            largest = size > largest ? size : largest;
            steps_[axis] = AllFloats(step_[axis]);
            last_[axis] = AllFloats(size - 0.5f);
        }
        half_ = AllFloats(0.5f);
        toUpper_ = AllFloats(0.49f);
        // Two additions, each within half a unit in the last place, and as much again.
        largestOffCentre_ = AllFloats(0.5f - (largest + 2) * 0x1p-22f);
        factors_ = FactorsFor(static_cast<std::uint32_t>(grid_.width));
        isSmallPlane_ = grid_.width < (1 << 15) && grid_.height < (1 << 15);
    }

    // The neighbours of the samples of a stretch, whose positions have been kept.
    [[gnu::noinline]] void Find(const Indexes& __restrict from, int samples, Indexes& __restrict to) const {
        const int last = samples * kRays;
        for (int index = 0; index < last; index += kFloatLanes) {
            // Find them in single precision, and note how close to a border each lies.
            Floats offCentre = {};
            const Ints x = Nearest(from, index, 0, offCentre);
            const Ints y = Nearest(from, index, 1, offCentre);
            const Ints z = Nearest(from, index, 2, offCentre);
            const Ints isSure = offCentre < largestOffCentre_;
            // Ask the doubles where one of the vector is in doubt.
            if (isSmallPlane_ && !AnySet(reinterpret_cast<Uints>(~isSure))) {
                Store(&to.z[index / kRays][index % kRays], reinterpret_cast<Uints>(z));
                Store(&to.plane[index / kRays][index % kRays], RowTimesWidth(y, x, factors_));
            } else {
                for (int lane = 0; lane < kFloatLanes; ++lane)
                    FindOne(from, index + lane, to);
            }
        }
    }

private:
    // The nearest index, and how far from the middle between two borders the coordinate lies. Beyond the volume that
    // is no distance: the border voxel stands for all.
    Z3D_INLINE Ints Nearest(const Indexes& from, int index, int axis, Floats& offCentre) const {
        const Floats moved = LoadFloats(&from.position[axis][index / kRays][index % kRays]) + steps_[axis];
        const Floats shifted = Min(Max(moved + toUpper_, half_), last_[axis]);
        const Ints whole = Truncate(shifted);
        const Floats off = shifted - ToFloats(whole) - half_;
        offCentre = Max(offCentre, Max(off, -off));
        return whole;
    }

    // One neighbour as the plain form finds it: the sum in double, then the nearest voxel.
    [[gnu::noinline]] void FindOne(const Indexes& from, int index, Indexes& to) const {
        std::uint32_t nearest[3];
        for (int axis = 0; axis < 3; ++axis) {
            const double moved = static_cast<double>(from.position[axis][index / kRays][index % kRays])
                                 + static_cast<double>(step_[axis]);
            nearest[axis] = static_cast<std::uint32_t>(NearestVoxel(moved, size_[axis]));
        }
        to.z[index / kRays][index % kRays] = nearest[2];
        to.plane[index / kRays][index % kRays] =
            nearest[1] * static_cast<std::uint32_t>(grid_.width) + nearest[0];
    }

    const VoxelGrid& grid_;
    std::int32_t size_[3];
    float step_[3];
    Floats steps_[3];
    Floats last_[3];
    Floats half_;
    Floats toUpper_;
    Floats largestOffCentre_;
    Ints factors_;
    bool isSmallPlane_;
};

struct VoxelsAndNeighbours {
    RgbVoxels voxel;
    RgbVoxels beside;
};
struct NeighbourStretch {
    ColourWords voxels;
    ColourWords beside;
};
struct NeighbourSource {
    const VoxelGrid& voxels;
    const SideStep& step;
};

// The format of a mode that looks at both. Its walk has to keep positions.
struct RgbWithNeighbour {
    static constexpr int kBytes = 0;
    static constexpr int kChannels = 3;
    static constexpr std::int32_t kLargest = kLargestSum;
    static constexpr bool kKeepsPositions = true;
    using Source = NeighbourSource;
    using Sample = VoxelsAndNeighbours;
    using Samples = NeighbourStretch;
    Z3D_INLINE static Sample SampleOf(const Samples& samples, int number) {
        return {SplitWords(samples.voxels.sample[number]), SplitWords(samples.beside.sample[number])};
    }
    // On the voxel; what the neighbour counts is up to the mode.
    using Window = RgbWindow;
    Z3D_INLINE static Bytes Accepts(const Window& window, const Samples& samples, int number) {
        return window.Accepts(SplitWords(samples.voxels.sample[number]));
    }
};

inline void Fetch(const NeighbourSource& source, const Indexes& indexes, int samples,
                  NeighbourStretch& stretch) {
    Indexes beside;
    source.step.Find(indexes, samples, beside);
    Fetch(source.voxels, indexes, samples, stretch.voxels);
    Fetch(source.voxels, beside, samples, stretch.beside);
}

} // namespace z3d::render::Z3D_ISA
