// Writes projections to files.
#pragma once

#include <filesystem>
#include <string>

#include "Picture.h"

namespace z3d::tools {

// The bytes of a PNG file.
std::string EncodePng(const Picture& picture);

void WritePng(const std::filesystem::path& path, const Picture& picture);

// The untouched floats, little-endian. PFM keeps the bottom row first.
void WritePfm(const std::filesystem::path& path, const Projection& projection);

// The untouched floats, little-endian, top row first: a header, and the floats in the data file beside it.
void WriteNrrd(const std::filesystem::path& headerPath, const std::filesystem::path& dataPath,
               const Projection& projection);

} // namespace z3d::tools
