#include "geometry/GammaLookup.h"

#include <cmath>

namespace z3d::geometry {
namespace {

// Written so that NaN ends at 0 too.
double HoldToTable(double level) {
    if (!(level >= 0.0)) return 0.0;
    return level > 255.0 ? 255.0 : level;
}

} // namespace

std::int32_t AdjustGamma(const std::uint8_t* table, float level) {
    if (table == nullptr) return 0;
    const double held = HoldToTable(level);
    const double below = std::floor(held);
    const double above = std::ceil(held);
    const double lower = table[static_cast<std::int32_t>(below)];
    const double upper = table[static_cast<std::int32_t>(above)];

    // On an entry both weights would be 0.
    if (above == below) return static_cast<std::int32_t>(lower);
    return static_cast<std::int32_t>(upper * (held - below) + lower * (above - held));
}

} // namespace z3d::geometry
