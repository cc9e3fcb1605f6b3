// Raw channel files, and the volume that the library makes of them.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "Arguments.h"
#include "File.h"

namespace z3d::tools {

enum class SampleType { Uint8, Float32 };

struct ChannelRequest {
    std::array<std::filesystem::path, 3> files; // red, green, blue; an empty one has no samples
    VolumeSize size;                            // as stored
    SampleType type;
    short maxDiagonal; // of the result, in voxels
    bool separate;     // load every file by itself, also one that is given again
};

struct ChannelImage {
    VolumeOwner volume;
    VoxelType type;
    Interval samples; // of all channels, as fitted
    Interval display; // what the library proposes to show
    double seconds;
};

// The files of a request, kept open so that the library finds them as they were checked. A file that cannot be
// opened or is too short is a failure.
class OpenChannels {
public:
    explicit OpenChannels(const ChannelRequest& request);

    // One sentence per file that is longer than its samples, or nothing.
    const std::string& Remarks() const { return remarks_; }

    // Draws its progress where someone watches it. Ctrl+C ends it.
    ChannelImage Load() const;

private:
    void Open(size_t channel);

    const ChannelRequest& request_;
    std::array<std::optional<InputFile>, 3> files_;
    std::array<std::string, 3> names_; // as the library takes them
    std::string remarks_;
};

} // namespace z3d::tools
