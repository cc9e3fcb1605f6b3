#include "DisplayRange.h"

#include <cmath>
#include <string>

#include "Failure.h"
#include "Picture.h"

namespace z3d::tools {

RangeChoice ParseRange(std::string_view text) {
    if (text == "auto") return {RangeKind::Auto, {}};
    if (text == "full") return {RangeKind::Full, {}};
    const Interval fixed = ParseInterval(text);
    if (!(fixed.low < fixed.high) || !std::isfinite(fixed.high - fixed.low))
        throw BadArgument("'" + std::string(text) + "' is an empty or infinite range");
    return {RangeKind::Fixed, fixed};
}

Interval RangeFor(const RangeChoice& choice, const Mode& mode, bool colour, const Projection& projection) {
    if (choice.kind == RangeKind::Fixed) return choice.fixed;
    const bool autoByDefault = colour ? mode.colourAuto : mode.greyAuto;
    if (choice.kind == RangeKind::Auto || (choice.kind == RangeKind::OfMode && autoByDefault))
        return ContributionRange(projection);
    Interval full = colour ? mode.colourFull : mode.greyFull;
    if (std::isinf(full.high)) full.high = ContributionRange(projection).high;
    return full;
}

} // namespace z3d::tools
