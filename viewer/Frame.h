// A picture of a view as the window shows it, with all that it was made of.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "View.h"
#include "VolumeLoad.h"

namespace z3d::viewer {

struct Frame {
    View view = {};
    std::shared_ptr<LoadedVolume> volume;
    std::shared_ptr<const tools::Projection> projection;
    tools::Interval range = {};   // shown from black to white
    tools::Picture picture = {};  // as a PNG of it has it
    std::vector<uint32_t> pixels; // 0x00RRGGBB, top row first
    std::string failure;          // instead of all pixels: why there are none
};

// Renders the view, or takes the projection of `former` where nothing but colours has changed.
std::unique_ptr<Frame> MakeFrame(const View& view, const std::shared_ptr<LoadedVolume>& volume,
                                 const Frame* former);

// What the projection holds there, for people: "173", "120 80 64" or "nothing there". Empty outside.
std::string ValueAt(const Frame& frame, int column, int row);

} // namespace z3d::viewer
