// Up to three channel volumes as one RGB volume.
#pragma once

#include "frame/Host.h"
#include "frame/Owned.h"
#include "primitives/ValueRange.h"

namespace z3d::compose {

// Null where a channel is missing. Two or three may be the same volume.
struct ChannelVolumes {
    Volume3D* red;
    Volume3D* green;
    Volume3D* blue;
};

// The same for one slice.
struct ChannelImages {
    Image2D* red;
    Image2D* green;
    Image2D* blue;
};

// A new unlocked volume of 3 bytes per voxel, of the channels' smallest width, height and depth. `range` is the
// common range of the channels' samples. `display` receives the range of the result's brightness, as sums of
// three channels: 3 times the smallest grey level and 3 times one more than the largest. It keeps its start values
// when the result has no slices, and is unspecified on failure.
//
// The channels are unlocked and are consumed: each of their slices is freed, and its entry cleared, as soon as
// it has been used. The volumes stay with the caller.
//
// Null when the host cancels, when memory is short, or when the channels hold neither bytes nor floats. Reports
// progress before each slice, and no start.
frame::OwnedVolume ComposeVolumes(const ChannelVolumes& channels, const primitives::ValueRange& range,
                                  primitives::ValueRange& display, const frame::Host& host);

// One slice: a new unlocked image of 3 bytes per pixel and of the smallest size of the channels, whose pixels
// are read as rows of that width. Widens `display`. The channels are left unlocked.
frame::OwnedImage ComposeSlice(const ChannelImages& channels, const primitives::ValueRange& range,
                               primitives::ValueRange& display);

} // namespace z3d::compose
