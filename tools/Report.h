// What a rendering command says on the error stream: a line per projection, or a progress line for many when
// someone watches.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Projection.h"
#include "StatusLine.h"

namespace z3d::tools {

class Report {
public:
    Report(bool quiet, int projections);

    void Done(PictureSize size, double seconds, const std::vector<std::filesystem::path>& files);

    // After the last projection.
    void Finish();

private:
    bool quiet_;
    bool progressLine_;
    int projections_;
    int done_ = 0;
    double seconds_ = 0; // spent in the library
    double start_;
    StatusLine line_;
    std::string firstFiles_;
    std::string lastFiles_;
};

} // namespace z3d::tools
