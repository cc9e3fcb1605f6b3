// Which values of a projection a picture shows from black to white.
#pragma once

#include <string_view>

#include "Modes.h"
#include "Projection.h"

namespace z3d::tools {

enum class RangeKind { OfMode, Auto, Full, Fixed };

struct RangeChoice {
    RangeKind kind;
    Interval fixed; // of RangeKind::Fixed
};

// "auto", "full" or "low:high", which must be finite and not empty.
RangeChoice ParseRange(std::string_view text);

// Auto runs from the least to the greatest value of the projection, full over all that the mode can give; where
// that has no end, to the greatest value.
Interval RangeFor(const RangeChoice& choice, const Mode& mode, bool colour, const Projection& projection);

} // namespace z3d::tools
