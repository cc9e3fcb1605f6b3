// An animated PNG: one file with many pictures, which browsers play and others show the first of.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "File.h"

namespace z3d::tools {

class Animation {
public:
    // The file is begun at once and takes its place in Finish. It plays for ever.
    Animation(const std::filesystem::path& path, int pictures, int picturesPerSecond);

    // The next picture, as a PNG file. All have the size and kind of the first.
    void Add(const std::string& png);

    void Finish();

private:
    void WriteChunk(const char* kind, const std::string& body);
    void WriteFrameControl(const std::string& header);

    OutputFile file_;
    int pictures_;
    int picturesPerSecond_;
    uint32_t sequence_ = 0;
    bool isFirst_ = true;
};

} // namespace z3d::tools
