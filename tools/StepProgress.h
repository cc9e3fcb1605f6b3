// How far a long step has come and how long it will still take, on a line where someone watches.
#pragma once

#include <string>

#include "StatusLine.h"
#include "files/VolumeReader.h"

namespace z3d::tools {

class StepProgress {
public:
    StepProgress(std::string what, bool quiet);

    // Draws, and says false after Ctrl+C. Valid as long as this object.
    files::Progress Callback();

private:
    bool Note(double done);

    std::string what_;
    bool drawn_;
    double start_;
    double drawnAt_;
    StatusLine line_;
};

// "1 s left", "3 min left"; nothing before that can be told.
std::string TimeLeft(double secondsSoFar, double done);

} // namespace z3d::tools
