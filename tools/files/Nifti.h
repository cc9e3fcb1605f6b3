// NIfTI-1: a header of 348 bytes, and the samples behind it (.nii) or in a file of their own (.hdr with .img).
#pragma once

#include "VolumeFormat.h"

namespace z3d::files {

// Whether a file that begins so is of this kind, in either byte order, whatever else is wrong with it.
bool IsNiftiStart(std::string_view start);

// .img files are known by the header beside them.
std::unique_ptr<VolumeFormat> OpenNifti(const std::filesystem::path& path, const FileSystem& files);

} // namespace z3d::files
