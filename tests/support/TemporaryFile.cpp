#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace z3d::test {
namespace {

// Several test programs run at the same time.
std::string UniqueName() {
    static const unsigned program = std::random_device()();
    static int files = 0;
    const std::string leaf = "zentra-test-" + std::to_string(program) + "-" + std::to_string(files++);
    return (std::filesystem::temp_directory_path() / leaf).string();
}

} // namespace

TemporaryFile::TemporaryFile(const void* bytes, std::size_t count) : name_(UniqueName()) {
    std::ofstream file(name_, std::ios::binary);
    file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
    file.close();
    EXPECT_TRUE(file.good()) << name_;
}

TemporaryFile::TemporaryFile(const std::vector<std::uint8_t>& bytes)
    : TemporaryFile(bytes.data(), bytes.size()) {}

TemporaryFile::TemporaryFile(const std::vector<float>& samples)
    : TemporaryFile(samples.data(), samples.size() * sizeof(float)) {}

TemporaryFile::~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(name_, ignored);
}

std::string MissingFileName() { return UniqueName(); }

std::string FolderName() { return std::filesystem::temp_directory_path().string(); }

} // namespace z3d::test
