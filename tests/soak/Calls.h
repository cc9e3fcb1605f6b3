// Calls of every export, well-formed and not, in an order that follows from a seed.
#pragma once

#include "support/RandomSource.h"

#include <string>

namespace z3d::soak {

class Calls {
public:
    // Writes small channel files into the folder, which the destructor removes.
    Calls(const std::string& folder, std::uint32_t seed);
    ~Calls();
    Calls(const Calls&) = delete;
    Calls& operator=(const Calls&) = delete;

    // One use of a few exports. Returns how many were called.
    int Next();

private:
    int UseImage();
    int UseVolume();
    int Project();
    int ProjectNothing();
    int UseAngles();
    int UseScalars();
    int SetTitle();
    int LoadFiles();
    int LoadNothing();

    test::RandomSource random_;
    std::string bytesFile_;
    std::string floatsFile_;
};

} // namespace z3d::soak
