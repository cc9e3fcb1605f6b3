// Renders one picture of a volume or a whole turn of them, on several threads, and writes each to its files.
#pragma once

#include <optional>
#include <vector>

#include "DisplayRange.h"
#include "Outputs.h"
#include "Report.h"

namespace z3d::tools {

struct TurnRequest {
    const Mode* mode;
    ProjectionRequest projection;
    std::vector<Rotation> views;
    bool numbered; // a turn; else there is one view, whose files keep their names
    std::vector<Output> outputs;
    RangeChoice range;
    bool colour;
    Colour background;
    Palette palette;
    int picturesPerSecond; // of an animation
    std::optional<int> jobs;
};

// The files of one picture.
std::vector<std::filesystem::path> FilesOf(const TurnRequest& request, int picture);

// All pictures of a turn have the size of the largest, made even, and the range of the first: neither place nor
// brightness flickers, and programs that make films take them. The files are the same for any number of jobs.
void RenderTurn(const TurnRequest& request, Volume3D& volume, bool quiet);

} // namespace z3d::tools
