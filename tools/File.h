// Files by Unicode path. Every failure is a sentence that names the file and the reason.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace z3d::tools {

class InputFile {
public:
    explicit InputFile(const std::filesystem::path& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    uint64_t Size() const { return size_; }
    void Seek(uint64_t offset);

    // Reads that many bytes, or fails.
    void Read(void* bytes, uint32_t count);

private:
    std::filesystem::path path_;
    void* handle_;
    uint64_t size_ = 0;
};

// A file that is new or replaces an older one. It is written beside its place under a name of its own, and takes
// its place in Commit: until then the older one stays as it is, and nothing is left when the object goes. A folder
// or a read-only file in its place is a failure at once.
class OutputFile {
public:
    explicit OutputFile(const std::filesystem::path& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(const void* bytes, size_t count);
    void Write(std::string_view text) { Write(text.data(), text.size()); }
    void Commit();

private:
    std::filesystem::path path_;
    std::filesystem::path unfinished_;
    void* handle_;
};

// Whether two paths name the same place, whatever the spelling.
bool SameFile(const std::filesystem::path& a, const std::filesystem::path& b);

// The name in short form, as old programs take it; the same name where there is none.
std::wstring ShortName(const std::filesystem::path& path);

} // namespace z3d::tools
