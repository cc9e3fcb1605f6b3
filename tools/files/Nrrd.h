// NRRD: a header in lines of text (.nhdr), with the samples behind it (.nrrd) or in a file of their own.
#pragma once

#include "VolumeFormat.h"

namespace z3d::files {

bool IsNrrdStart(std::string_view start);

// Taken are three dimensions, four of which the first has 3 entries of a byte (red, green, blue), and four of
// which the last counts volumes; encodings raw and gzip.
std::unique_ptr<VolumeFormat> OpenNrrd(const std::filesystem::path& path, const FileSystem& files);

} // namespace z3d::files
