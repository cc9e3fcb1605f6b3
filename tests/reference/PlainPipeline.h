// From channel files to one volume in the plainest form: whole slices, every pass of the rules as a pass of its
// own, on top of the plain primitives. What the library's loader, composition and conversion are compared with,
// bit for bit.
#pragma once

#include "reference/ReferenceRenderer.h"

#include <cfloat>
#include <cstdint>
#include <vector>

namespace z3d::reference {

struct Range {
    float max = -FLT_MAX;
    float min = FLT_MAX;
};

struct Size {
    int width;
    int height;
    int depth;
};

// What one load of a file leaves behind.
struct Loaded {
    Volume volume;
    Range range;
};

using FileBytes = std::vector<std::uint8_t>;

// Every sample in order: replaces the maximum when greater, the minimum when smaller.
void Scan(const Volume& volume, Range& range);

// One grey slice of 1 or 4 bytes per pixel.
Volume ResizeSlices(const Volume& volume, int newWidth, int newHeight);
Volume ResampleDepth(const Volume& volume, int newDepth, const Range& bounds);

// `running` is widened.
Loaded Load(const FileBytes& file, const Size& stored, bool is8bit, const Size& size, Range& running);

// Null for a missing channel; all others of one size and pixel type.
Volume Compose(const Volume* red, const Volume* green, const Volume* blue, const Range& range,
               Range& display);
Volume ConvertToGrey(const Volume& source, const Range& range, Range& display);

struct RgbRequest {
    const FileBytes* red; // null for a missing channel
    const FileBytes* green;
    const FileBytes* blue;
    Size stored;
    bool is8bit;
    int maxDiagonal;
};

struct RgbImage {
    Volume volume;
    Range display;
    Range range;
};

// Channels that are the same object share one load. At least one channel.
RgbImage MakeRgbImage(const RgbRequest& request);

} // namespace z3d::reference
