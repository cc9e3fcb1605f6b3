// A file with given bytes, removed at the end of its scope.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace z3d::test {

class TemporaryFile {
public:
    // In the system's folder for temporary files, under a name of its own.
    explicit TemporaryFile(const std::vector<std::uint8_t>& bytes);
    explicit TemporaryFile(const std::vector<float>& samples);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const char* Name() const { return name_.c_str(); }

private:
    TemporaryFile(const void* bytes, std::size_t count);

    std::string name_;
};

// The path of a file that does not exist.
std::string MissingFileName();

// The path of a folder that does.
std::string FolderName();

} // namespace z3d::test
