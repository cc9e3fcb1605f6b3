// What both benchmarks take from their command line, and the head that they measure on.
#pragma once

#include "reference/ReferenceRenderer.h"

#include <string>

namespace z3d::bench {

// --head FILE, --only TEXT, --seconds S; each program explains them.
struct Options {
    std::string head;
    std::string only;
    double seconds;

    // Whether a row of this name is to be measured.
    bool Wants(const std::string& name) const { return name.find(only) != std::string::npos; }
};
Options ReadOptions(int argc, char** argv, double seconds);

// 181 x 217 x 181 voxels of one byte from the file, or a smooth phantom of that size.
reference::Volume LoadHead(const std::string& file);

} // namespace z3d::bench
