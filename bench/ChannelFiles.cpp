#include "ChannelFiles.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

namespace z3d::bench {
namespace {

std::vector<char> ChannelOf(const reference::Volume& grey, std::size_t channel, bool is8bit) {
    std::vector<char> bytes;
    for (std::size_t i = 0; i < grey.voxels.size(); ++i) {
        const std::uint8_t byte = grey.voxels[(i + 5 * channel) % grey.voxels.size()];
        const float value = static_cast<float>(byte) * 1.37f - 40.0f;
        const char* const valueBytes = reinterpret_cast<const char*>(&value);
        if (is8bit) bytes.push_back(static_cast<char>(byte));
        if (!is8bit) bytes.insert(bytes.end(), valueBytes, valueBytes + sizeof value);
    }
    return bytes;
}

} // namespace

ChannelFiles::ChannelFiles(const reference::Volume& grey, bool is8bit) {
    // Two programs at the same time have files of their own.
    const std::filesystem::path folder = std::filesystem::temp_directory_path();
    const std::string prefix = "zentra_bench_" + std::to_string(std::random_device()()) + "_";
    for (std::size_t channel = 0; channel < 3; ++channel) {
        names_[channel] = (folder / (prefix + std::to_string(channel) + ".raw")).string();
        const std::vector<char> bytes = ChannelOf(grey, channel, is8bit);
        std::ofstream file(names_[channel], std::ios::binary);
        if (file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush()) continue;
        std::fprintf(stderr, "%s cannot be written\n", names_[channel].c_str());
        std::exit(1);
    }
}

ChannelFiles::~ChannelFiles() {
    std::error_code ignored;
    for (const std::string& name : names_)
        std::filesystem::remove(name, ignored);
}

} // namespace z3d::bench
