// Volumes from the files people have, as voxels of bytes: NIfTI-1 (.nii, .nii.gz, .hdr with .img), NRRD (.nrrd,
// .nhdr), slices in PNG files, and bare samples.
//
//     VolumeReader reader({path});
//     const Fitted fitted = reader.Fit({});
//     const ValueRange input = reader.ProposedInput(progress);
//     ... make a volume of fitted.size and fitted.type ...
//     reader.Read(fitted, input, [&](int z) { return slices[z][0]; }, progress);
//
// What a file cannot give ends in a FileFailure, a cancel in Cancelled. A reader belongs to one thread at a time.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Failure.h"
#include "VolumeTypes.h"

namespace z3d::files {

// Whether a name is that of a file with a header, which needs no RawLayout.
bool DescribesItself(const std::filesystem::path& path);

class FileSystem;
class VolumeFormat;

// Where the samples of a file without a header lie.
struct RawLayout {
    VolumeSize size;
    SampleType type;
    uint64_t offset = 0; // bytes before the first sample
    bool bigEndian = false;
};

struct VolumeSource {
    // One file, a folder of PNG slices, a pattern such as "slices/a*.png", or several PNG slices in their order.
    std::vector<std::filesystem::path> paths;
    std::optional<RawLayout> raw;   // only for a file without a header
    std::optional<Spacing> spacing; // instead of the file's own
};

struct VolumeFacts {
    std::string format; // "NIfTI-1", "NRRD", "PNG slices", "raw samples"
    VolumeSize size = {};
    Spacing spacing = {1, 1, 1};
    SampleType type = SampleType::Uint8;
    // A stored sample stands for the value sample * slope + intercept, in the file's own units.
    double slope = 1;
    double intercept = 0;
    std::vector<std::filesystem::path> files; // all that are read
    std::string remark;                       // what the user should know; empty or a sentence
};

// How a volume is made to fit.
struct FitRequest {
    enum class Cubes {
        WhereNeeded, // where spacings differ by more than 1 %
        Always,
        Never
    };
    Cubes cubes = Cubes::WhereNeeded; // resample to equal spacing, that of the finest axis
    int maxDiagonal = 0;              // shrink a longer volume to that diagonal, in voxels; 0: no limit
};

struct Fitted {
    VolumeSize size;
    VoxelType type;
    bool resampled;

    uint64_t ByteCount() const;
};

// Called now and then with the part that is done, 0 to 1. False cancels. An empty function is fine.
using Progress = std::function<bool(double done)>;

// Where slice z, 0 first, is to be written: width * height voxels without padding. Called once for each slice,
// in order; the voxels are whole when the next one is asked for, or when Read returns.
using SliceSink = std::function<unsigned char*(int z)>;

class VolumeReader {
public:
    // Reads headers only.
    explicit VolumeReader(const VolumeSource& source);
    VolumeReader(const VolumeSource& source, const FileSystem& files); // which must outlive the reader
    ~VolumeReader();
    VolumeReader(VolumeReader&&) noexcept;
    VolumeReader& operator=(VolumeReader&&) noexcept;

    const VolumeFacts& Facts() const;

    // The size that Read makes. Fails when an axis would become longer than kLongestAxis.
    Fitted Fit(const FitRequest& request) const;

    // What becomes 0 to 255 when nothing else is asked for. Bytes stay as they are: the values of samples 0 and
    // 255. Other types: the 0.5 and 99.5 percentiles, which takes a pass over the file.
    ValueRange ProposedInput(const Progress& progress) const;

    // The 0.5 and 99.5 percentiles of any type but colour; where they are the same value, the least and the
    // greatest. Samples that are no finite number do not count; where none is, that is a failure.
    ValueRange Percentiles(const Progress& progress) const;

    // The voxels. Values up to input.low become 0, values from input.high on 255, linear between, rounded to the
    // nearest; what is no number becomes 0. Colour is taken as it is, whatever the input.
    void Read(const Fitted& fitted, const ValueRange& input, const SliceSink& sink,
              const Progress& progress) const;

private:
    std::unique_ptr<VolumeFormat> format_;
};

// A --max-diagonal that makes a volume fit a 32-bit process comfortably, for messages.
int ProposedDiagonal(const Fitted& fitted);

} // namespace z3d::files
