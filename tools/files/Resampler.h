// Stretches or shrinks a volume while it goes by, slice after slice. Voxels of the new size are linear between the
// old ones where they lie closer, and means of those around, nearer ones counting more, where they lie wider. The
// same bits on every machine.
#pragma once

#include <cstddef>
#include <deque>
#include <vector>

#include "VolumeReader.h"

namespace z3d::files {

// What one new voxel of an axis is made of: old voxels from `first` on, with weights that add up to 1.
struct AxisTap {
    int first;
    std::vector<float> weights;
};

std::vector<AxisTap> MakeTaps(int oldLength, int newLength);

class Resampler {
public:
    // `channels` bytes a voxel. The sink is called in order with each new slice that becomes whole.
    Resampler(const VolumeSize& from, const VolumeSize& to, unsigned int channels, const SliceSink& sink);

    // The next old slice: all of them, from the first to the last.
    void Push(const unsigned char* slice);

private:
    std::vector<float> InPlane(const unsigned char* slice) const;
    void Finish(const AxisTap& tap, unsigned char* out) const;

    VolumeSize from_, to_;
    size_t channels_;
    SliceSink sink_;
    std::vector<AxisTap> columns_, rows_, slices_;
    std::deque<std::vector<float>> held_; // old slices in their new width and height
    int firstHeld_ = 0;
    int pushed_ = 0;
    size_t finished_ = 0;
};

} // namespace z3d::files
