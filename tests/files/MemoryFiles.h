// Files without a disk, and the bytes of files to put there.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "files/ByteStream.h"
#include "files/VolumeReader.h"

namespace z3d::files {

using Bytes = std::string;

class MemoryFiles : public FileSystem {
public:
    void Put(const std::filesystem::path& path, Bytes bytes) { files_[path] = std::move(bytes); }

    std::unique_ptr<ByteStream> Open(const std::filesystem::path& path) const override;
    bool Exists(const std::filesystem::path& path) const override { return files_.count(path) == 1; }
    bool IsFolder(const std::filesystem::path& path) const override;
    std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder) const override;

private:
    std::map<std::filesystem::path, Bytes> files_;
};

Bytes Gzipped(const Bytes& bytes);

// A NIfTI-1 header of 352 bytes; what a test is about is set by the test.
struct NiftiFields {
    std::vector<int16_t> dim = {3, 2, 2, 1};
    int16_t type = 2;
    float spacing[3] = {1, 1, 1};
    float offset = 352;
    float slope = 0;
    float intercept = 0;
    bool bigEndian = false;
    std::string magic = std::string("n+1\0", 4);
    int32_t length = 348;
};
Bytes NiftiHeader(const NiftiFields& fields);

// Numbers in either byte order.
template <class Number>
Bytes Packed(const std::vector<Number>& numbers, bool bigEndian = false) {
    Bytes bytes;
    for (const Number number : numbers) {
        Bytes one(reinterpret_cast<const char*>(&number), sizeof(number));
        bytes += bigEndian ? Bytes(one.rbegin(), one.rend()) : one;
    }
    return bytes;
}

// A PNG: `channels` of 1 or 3, samples of 8 or 16 bits, rows from the top.
Bytes Png(int width, int height, int channels, int bits, const Bytes& samples);

// All voxels that a reader makes, with what it proposes.
std::vector<int> Voxels(const VolumeReader& reader, const FitRequest& request = {});
std::vector<int> Voxels(const VolumeReader& reader, const ValueRange& input, const FitRequest& request = {});

// The sentence with which opening and reading a file ends.
std::string Refusal(const MemoryFiles& files, const std::filesystem::path& path);

} // namespace z3d::files
