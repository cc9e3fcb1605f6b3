// Turns what the user typed into numbers. Every function fails with a BadArgument that says what is wanted.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "Colour.h"
#include "Volume.h"

namespace z3d::tools {

struct Interval {
    float low, high;
    bool operator==(const Interval&) const = default;
};

// In voxels, counted from 1, both ends inclusive.
struct CropBox {
    short x0, x1, y0, y1, z0, z1;
    bool operator==(const CropBox&) const = default;
};

// Finite or infinite, never NaN.
float ParseFloat(std::string_view text);

float ParseFinite(std::string_view text);
double ParseFiniteDouble(std::string_view text);

// 1 to kLongestAxis.
int ParseAxisLength(std::string_view text);

uint64_t ParseByteCount(std::string_view text);

// "181x217x181", the x large or small
VolumeSize ParseSize(std::string_view text);

// "uint8" or "rgb8"
VoxelType ParseVoxelType(std::string_view text);

// "uint8", "int16", ... "rgb8"
files::SampleType ParseStoredType(std::string_view text);

// Their names, for help.
std::string StoredTypeNames(const char* separator);

// "1,1,2.5": distances of voxels along x, y and z, each above 0.
files::Spacing ParseSpacing(std::string_view text);

// "30,40,50"
std::array<float, 3> ParseAngles(std::string_view text);

// "zxy", large or small: each axis once, leftmost factor first.
AxisOrder ParseOrder(std::string_view text);

// "x", "y" or "z" as 0, 1 or 2.
short ParseAxis(std::string_view text);

// "x0:x1,y0:y1,z0:z1", each interval in order and counted from 1.
CropBox ParseCrop(std::string_view text);

// "low:high", in order.
Interval ParseInterval(std::string_view text);

// "r,g,b", each 0 to 255.
Colour ParseColour(std::string_view text);

// A whole number within bounds.
int ParseWhole(std::string_view text, int lowest, int highest);

} // namespace z3d::tools
