// Reading a file from its first byte on.
#pragma once

#include <cstddef>
#include <cstdint>

namespace z3d::platform {

// An existing file, open for reading until the end of the scope. Others may read it meanwhile.
class File {
public:
    // The name is a path in the platform's 8-bit form. Not open afterwards when the name is null, too long or
    // unknown, names a directory, or may not be read.
    explicit File(const char* name);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool IsOpen() const;

    // Reads the next `bytes` bytes and returns how many there were: fewer at the file's end and on an error,
    // with the rest of the memory left as it was.
    std::size_t Read(void* to, std::size_t bytes);

private:
    std::intptr_t handle_;
};

} // namespace z3d::platform
