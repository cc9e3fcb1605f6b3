// A volume of floats as a volume of grey bytes.
#pragma once

#include "frame/Host.h"
#include "frame/Owned.h"
#include "primitives/ValueRange.h"

namespace z3d::compose {

// A new unlocked volume of the source's size: `range` mapped to 0 to 255, each sample scaled, then shifted, then
// rounded half to even and saturated. When both ends of the range are equal, every byte is that value truncated.
// Slices that are not floats are moved into the result as they are.
//
// `display` receives the range of the mapped values before rounding, which may go beyond 0 and 255; it is
// unspecified on failure. The source's slices are consumed: every entry is cleared as it is handled. The volume
// stays with the caller.
//
// Null when the host cancels or when memory is short. Reports progress before each slice, and no start. Without
// a source, or when no result can be begun, it reports that the conversion cannot run.
frame::OwnedVolume ConvertToGrey(Volume3D* source, const primitives::ValueRange& range,
                                 primitives::ValueRange& display, const frame::Host& host);

} // namespace z3d::compose
