// Volumes from files, or the made-up head.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "Volume.h"

namespace z3d::viewer {

struct Source {
    std::vector<std::filesystem::path> paths; // none: the made-up head
    int maxDiagonal = 0;                      // that the volume was shrunk to; 0: it was not

    bool IsPhantom() const { return paths.empty(); }
    std::string Name() const; // short, for people
};

struct LoadedVolume {
    Source source;
    tools::VolumeOwner volume;
    tools::VolumeSize size;
    tools::VoxelType type;
    std::vector<std::filesystem::path> files; // all that were read
    std::string remark;                       // what the user should know; empty or a sentence
};

// Called now and then with the part that is done, 0 to 1. False cancels.
using Progress = std::function<bool(double done)>;

inline constexpr tools::VolumeSize kPhantomSize = {181, 217, 181};

// A volume for which memory is short is shrunk, and the remark says so. Fails with a sentence; after a cancel the
// sentence is of no interest.
LoadedVolume LoadVolume(const Source& source, const Progress& progress);

} // namespace z3d::viewer
