// Volumes of PNG pictures, one for each slice, its top row first.
#pragma once

#include "VolumeFormat.h"

namespace z3d::files {

bool IsPngStart(std::string_view start);

// The slices that a folder or a pattern such as "scan/slice*.png" stands for, numbers within names in the order of
// their values (2 before 10). Fails when there are none.
std::vector<std::filesystem::path> SlicesIn(const std::filesystem::path& folder, const FileSystem& files);
std::vector<std::filesystem::path> SlicesOf(const std::filesystem::path& pattern, const FileSystem& files);

// Grey pictures of 8 or 16 bits, or colour ones, all of the same kind and size. Opacity is ignored.
std::unique_ptr<VolumeFormat> OpenPngSlices(const std::vector<std::filesystem::path>& slices,
                                            const FileSystem& files);

} // namespace z3d::files
