// What every kind of volume file comes down to: facts, and a stream of samples.
#pragma once

#include <memory>

#include "ByteStream.h"
#include "VolumeReader.h"

namespace z3d::files {

// All samples of a volume: slice by slice, row by row, column by column, in this machine's byte order.
class SampleStream {
public:
    SampleStream() = default;
    virtual ~SampleStream() = default;
    SampleStream(const SampleStream&) = delete;
    SampleStream& operator=(const SampleStream&) = delete;

    // Exactly `count` samples, or a FileFailure.
    virtual void Read(void* samples, size_t count) = 0;
};

class VolumeFormat {
public:
    VolumeFormat() = default;
    virtual ~VolumeFormat() = default;
    VolumeFormat(const VolumeFormat&) = delete;
    VolumeFormat& operator=(const VolumeFormat&) = delete;

    virtual std::unique_ptr<SampleStream> Start() const = 0;

    VolumeFacts facts;
};

// A file, folder or pattern by name and content. The file system must outlive the result.
std::unique_ptr<VolumeFormat> OpenVolume(const VolumeSource& source, const FileSystem& files);

} // namespace z3d::files
