// Reads the headers of NRRD volumes (.nhdr with the voxels in a file of their own, .nrrd with the voxels behind).
#pragma once

#include "RawVolume.h"

namespace z3d::tools {

bool IsNrrdName(const std::filesystem::path& path);

// Where and how the voxels of a NRRD file lie. Taken are unsigned bytes, raw encoding, and either three
// dimensions (grey) or four of which the first has 3 entries (red, green, blue).
RawSource ReadNrrdHeader(const std::filesystem::path& path);

} // namespace z3d::tools
