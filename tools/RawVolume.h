// Reads voxels that lie in a file without further structure: slice by slice, row by row, column by column.
#pragma once

#include <cstdint>
#include <filesystem>

#include "Volume.h"

namespace z3d::tools {

struct RawSource {
    std::filesystem::path path;
    VolumeSize size;
    VoxelType type;
    uint64_t offset; // bytes before the first voxel
};

// The volume, unlocked. Bytes after the last voxel are ignored; a file that is too short is a failure.
VolumeOwner ReadRawVolume(const RawSource& source);

} // namespace z3d::tools
