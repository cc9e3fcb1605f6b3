// Volumes made by a rule, for comparing renderers. The same arguments give the same bytes on every platform.
// Colour volumes get their own values per channel; where a volume has 2 or 4 bytes per voxel every byte is a
// value of its own.
#pragma once

#include "reference/ReferenceRenderer.h"
#include "support/RandomSource.h"

#include <cstdint>
#include <string>

namespace z3d::test {

struct VolumeSize {
    int width;
    int height;
    int depth;
    int bytesPerVoxel = 1;
};

// All bytes 0, to be filled by the caller.
reference::Volume EmptyVolume(const VolumeSize& size);

// One byte of a voxel.
std::uint8_t& VoxelByte(reference::Volume& volume, int x, int y, int z, int channel = 0);

reference::Volume ConstantVolume(const VolumeSize& size, std::uint8_t value);

// Every byte uniform over 0 to 255.
reference::Volume NoiseVolume(const VolumeSize& size, std::uint32_t seed);

// One voxel of 16 is bright (128 to 255), the others are 0.
reference::Volume SparseVolume(const VolumeSize& size, std::uint32_t seed);

// A few soft spheres over a dim ground.
reference::Volume BlobVolume(const VolumeSize& size, std::uint32_t seed);

// 0 at the first voxel of the axis (0 = x, 1 = y, 2 = z) to 255 at the last; channels 1 and 2 are mirrored
// and halved, so that the channels differ.
reference::Volume RampVolume(const VolumeSize& size, int axis);

// A box of one value within a border of another; the border takes a quarter of each side.
reference::Volume StepVolume(const VolumeSize& size, std::uint8_t border, std::uint8_t inside);

// 0 and 255 in turn, cells of the given side; each channel is shifted by its number of voxels along x.
reference::Volume CheckerboardVolume(const VolumeSize& size, int cellSide);

// Any of the above, with a seed of its own for its details.
reference::Volume RandomVolume(RandomSource& random, const VolumeSize& size);

// 1 to maxSide per side, now and then a volume of one voxel's thickness.
VolumeSize RandomSize(RandomSource& random, int maxSide, int bytesPerVoxel);

std::string Describe(const reference::Volume& volume);

} // namespace z3d::test
