// What the benchmarks take from their command line, and the head that they measure on.
#pragma once

#include "reference/ReferenceRenderer.h"

#include <span>
#include <string>

namespace z3d::bench {

// --head FILE, --only TEXT, --seconds S, --loads; each program explains those that it takes.
struct Options {
    std::string head;
    std::string only;
    double seconds = 0;
    bool loads = false;

    // Whether a row of this name is to be measured.
    bool Wants(const std::string& name) const {
        return only.starts_with('=') ? name == only.substr(1) : name.find(only) != std::string::npos;
    }
};

struct Usage {
    // Printed when the command line is not understood.
    const char* text;
    // The default of --seconds.
    double seconds;
    bool takesLoads = false;
};

// Fills in the operands, all of which have to be there. Ends the program with 2 and its usage where the command line
// is not understood.
Options ReadOptions(int argc, char** argv, const Usage& usage, std::span<std::string> operands = {});

// 181 x 217 x 181 voxels of one byte from the file; without a name a smooth phantom of that size. Ends the program
// with 1 where the file is not there or is shorter than that: figures of something else would mislead.
reference::Volume LoadHead(const std::string& file);

} // namespace z3d::bench
