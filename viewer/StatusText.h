// What the window says in words.
#pragma once

#include <string>

#include "Frame.h"

namespace z3d::viewer {

std::string TitleText(const std::string& sourceName);              // "head.nrrd - Zentra view"
std::string VolumeText(const std::string& name, const View& view); // "head.nrrd, 181 x 217 x 181 grey voxels"
std::string SizeText(const Frame& frame);                          // "264 x 181 pixels"
std::string TimeText(const Frame& frame);                          // "6.9 ms"
std::string SpeedText(double picturesPerSecond);                   // "92 pictures/s", or nothing at rest

// "(120, 85): 173", or nothing outside the picture. Column and row from 0.
std::string PointerText(const Frame& frame, int column, int row);

// An end of the range from black to white, as short as the panel needs it: "0.25", "18050".
std::string RangeEndText(double value);

const char* KeysText();

} // namespace z3d::viewer
