// From channel files to one volume: the call behind the export of the same name.
#pragma once

#include "Zentra3DRendering.h"

#include "frame/Host.h"

#include <cstdint>

namespace z3d::compose {

// What the host asked for; the public header states the contract.
struct RgbImageRequest {
    const char* redFile;
    const char* greenFile;
    const char* blueFile;
    std::int16_t width, height, depth; // as stored
    bool is8bit;
    std::int16_t maxDiagonal;
    bool keepChannelsApart;
    float* outMax; // any of these four may be null
    float* outMin;
    float* rangeMaxOut;
    float* rangeMinOut;
};

// The new volume, unlocked and owned by the caller, or null.
Volume3D* GetRGBImage(const RgbImageRequest& request, const frame::Host& host);

} // namespace z3d::compose
