// One channel of a 3D image, from a file without a header into a volume of any size.
#pragma once

#include "frame/Host.h"
#include "frame/Owned.h"
#include "primitives/ValueRange.h"

#include <cstdint>

namespace z3d::volume {

struct VolumeSize {
    std::int32_t width;
    std::int32_t height;
    std::int32_t depth;
};

// Slices one after another, slice 0 first; row 0 first; no padding. A sample is an unsigned byte or a
// little-endian 32-bit float. What the file holds beyond the last slice is ignored; what it lacks is zero.
struct RawVolumeFile {
    const char* name;
    VolumeSize size;
    bool is8bit;
};

// Reads the file slice by slice into a new unlocked volume of `size`, with 1 or 4 bytes per voxel, resampling
// each slice in plane, and then the stack in depth, where the sizes differ. The range of the result replaces
// `volumeRange` and widens `running`.
//
// Null with a warning, shown once everything has been released, when the file cannot be opened or when memory is
// short; null without one when the host cancels, when the depth cannot be resampled, or when the file has
// no samples. Depth 0 to depth 0 gives an empty volume. On failure `running` is untouched and `volumeRange` is
// unspecified.
//
// Reports a start once the file is open, and progress after each slice of the file; then, if the depth differs,
// a start and progress after each slice of the result.
frame::OwnedVolume LoadRawVolume(const RawVolumeFile& file, const VolumeSize& size,
                                 primitives::ValueRange& running, primitives::ValueRange& volumeRange,
                                 const frame::Host& host);

} // namespace z3d::volume
