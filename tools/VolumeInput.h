// A volume file as a command's input: its options, what becomes of it, and the volume.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Arguments.h"
#include "HostObjects.h"
#include "files/VolumeReader.h"

namespace CLI {
class App;
}

namespace z3d::tools {

struct InputRangeChoice {
    bool automatic;
    files::ValueRange fixed;
};

struct VolumeInputOptions {
    std::vector<std::string> inputs;
    std::optional<VolumeSize> size;
    std::optional<files::SampleType> type;
    std::optional<uint64_t> offset;
    std::optional<bool> bigEndian;
    std::optional<files::Spacing> spacing;
    std::optional<InputRangeChoice> range;
    std::optional<bool> cubes;
    int maxDiagonal = 0;
};

// INPUT and the options that say how it is read. `options` must outlive the parse.
void AddVolumeInput(CLI::App& command, VolumeInputOptions& options);

// What stands below the options in the help of a command that has them.
const char* VolumeInputHelp();

struct LoadedVolume {
    VolumeOwner volume;
    files::ValueRange input; // values that became 0 and 255
};

class VolumeInput {
public:
    // Reads headers only. Options that contradict each other or the file are a BadArgument.
    explicit VolumeInput(const VolumeInputOptions& options);

    const files::VolumeFacts& Facts() const { return reader_.Facts(); }
    const VolumeSize& Size() const { return fitted_.size; }
    VoxelType Type() const { return fitted_.type; }

    // Reads the voxels. Unless it is quiet, remarks go to the error stream, and progress where someone watches.
    LoadedVolume Load(bool quiet) const;

private:
    files::ValueRange InputRange(bool quiet) const;
    void Remark(const files::ValueRange& input) const;

    std::optional<InputRangeChoice> range_;
    files::VolumeReader reader_;
    files::Fitted fitted_;
};

} // namespace z3d::tools
