// Samples that lie in one file without gaps, packed or not.
#pragma once

#include "VolumeFormat.h"

namespace z3d::files {

enum class Packing { None, Gzip, AsItBegins };

struct SamplePlace {
    std::filesystem::path path;
    Packing packing = Packing::None;
    uint64_t start = 0; // of packed or unpacked data in the file
    uint64_t skip = 0;  // unpacked bytes before the first sample
    bool bigEndian = false;
};

// Fails at once when the file is known to be too short. Otherwise `facts.files` gains the file.
std::unique_ptr<VolumeFormat> OpenSamples(VolumeFacts facts, const SamplePlace& place,
                                          const FileSystem& files);

} // namespace z3d::files
