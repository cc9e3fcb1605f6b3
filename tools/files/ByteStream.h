// Bytes in order, from a file, from memory, or unpacked on the way.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace z3d::files {

class ByteStream {
public:
    ByteStream() = default;
    virtual ~ByteStream() = default;
    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;

    // As many bytes as are wanted, fewer only at the end.
    virtual size_t Read(void* bytes, size_t count) = 0;

    // All bytes from first to last, where that is known without reading them.
    virtual std::optional<uint64_t> Size() const { return std::nullopt; }

    // False when the end comes first.
    virtual bool Skip(uint64_t count);
};

// What readers see of the disk. Tests and fuzzers put memory in its place.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    // Fails with a sentence that names the file and the reason.
    virtual std::unique_ptr<ByteStream> Open(const std::filesystem::path& path) const = 0;

    virtual bool Exists(const std::filesystem::path& path) const = 0;
    virtual bool IsFolder(const std::filesystem::path& path) const = 0;

    // The files in a folder, in no order.
    virtual std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder) const = 0;
};

const FileSystem& Disk();

// Unpacks gzip data, of one or more members, that begins at the stream's present position. `path` is for messages.
std::unique_ptr<ByteStream> Unpacked(std::unique_ptr<ByteStream> packed, const std::filesystem::path& path);

// The file, unpacked when it begins as gzip data does.
std::unique_ptr<ByteStream> OpenUnpacked(const FileSystem& files, const std::filesystem::path& path);

} // namespace z3d::files
