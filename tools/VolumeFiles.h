// Writes volumes of bytes.
#pragma once

#include <filesystem>
#include <vector>

#include "Volume.h"

namespace z3d::tools {

// The files that WriteVolume makes of a name: .raw the voxels alone; .nhdr a header, and the voxels in the .raw
// beside it. Other extensions are a BadArgument.
std::vector<std::filesystem::path> VolumeFilesOf(const std::filesystem::path& path);

void WriteVolume(const std::filesystem::path& path, Volume3D& volume, VoxelType type);

} // namespace z3d::tools
