// Loading three channels: what is measured, and the files for it.
#pragma once

#include "reference/ReferenceRenderer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace z3d::bench {

struct LoadRow {
    std::string name;
    bool is8bit;
    std::int16_t maxDiagonal;
};

// The diagonal of the head is 335.2 voxels: a limit of 336 leaves it whole.
inline std::vector<LoadRow> LoadRows() {
    return {{"three channels of bytes into diagonal 250", true, 250},
            {"three channels of bytes, whole", true, 336},
            {"three channels of floats into diagonal 250", false, 250},
            {"three channels of floats, whole", false, 336}};
}

// Three files of shifted copies of a grey volume in the folder for temporary files, removed at the end. Floats are
// the bytes times 1.37, minus 40.
class ChannelFiles {
public:
    ChannelFiles(const reference::Volume& grey, bool is8bit);
    ~ChannelFiles();
    ChannelFiles(const ChannelFiles&) = delete;
    ChannelFiles& operator=(const ChannelFiles&) = delete;

    const char* operator[](std::size_t channel) const { return names_[channel].c_str(); }

private:
    std::string names_[3];
};

} // namespace z3d::bench
