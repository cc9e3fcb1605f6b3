#include "volume/DepthResampling.h"

#include "frame/LockedImage.h"
#include "primitives/DepthBlend.h"
#include "volume/SliceRange.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace z3d::volume {
namespace {

using primitives::DepthBlend;
using primitives::ValueRange;

bool HasAlikeSlices(const Volume3D& volume) {
    for (std::size_t z = 0; z < volume.depth; ++z) {
        const Image2D* slice = volume.slices[z];
        if (slice == nullptr || slice->width != volume.width || slice->height != volume.height) return false;
        if (slice->bytesPerPixel != volume.slices[0]->bytesPerPixel) return false;
        if (slice->bytesPerPixel != 1 && slice->bytesPerPixel != 4) return false;
    }
    return true;
}

// Where a slice of the result comes from.
struct Neighbours {
    std::int32_t lower;
    std::int32_t upper;
    double t; // how far from lower to upper; beyond 0 to 1 at the ends
};

// Positions of the centres of the result's slices, counted in source slices from the centre of the first.
class DepthPositions {
public:
    DepthPositions(std::int32_t sourceDepth, std::int32_t newDepth)
        : last_(sourceDepth - 1),
          ratio_(static_cast<double>(sourceDepth) / newDepth),
          offset_((ratio_ - 1.0) * 0.5) {}

    Neighbours Of(std::int32_t z) const {
        const double position = z * ratio_ + offset_;
        const auto lower = std::clamp(static_cast<std::int32_t>(std::floor(position)), 0, last_);
        return {lower, std::min(lower + 1, last_), position - lower};
    }

private:
    std::int32_t last_;
    double ratio_;
    double offset_;
};

// `lower` and `upper` may be the same. Widens `range` by the result, whose samples are still at hand.
bool BlendSlices(Image2D* lower, Image2D* upper, const DepthBlend& blend, Image2D* result,
                 ValueRange& range) {
    const frame::LockedImage to(result);
    const frame::LockedImage a(lower);
    const frame::LockedImage b(upper);
    if (!to || !a || !b) return false;
    if (lower->bytesPerPixel == 4) {
        blend.Floats(a.Floats(), b.Floats(), to.Floats(), to.PixelCount());
    } else {
        blend.Bytes(a.Bytes(), b.Bytes(), to.Bytes(), to.PixelCount());
    }
    WidenByPixels(range, to);
    return true;
}

} // namespace

frame::OwnedVolume ResampleDepth(Volume3D& source, std::int32_t newDepth, const ValueRange& bounds,
                                 ValueRange& range, const frame::Host& host) {
    if (newDepth < 0 || newDepth > UINT16_MAX || !HasAlikeSlices(source)) return nullptr;
    if (source.depth == 0 && newDepth != 0) return nullptr;
    const auto depth = static_cast<std::uint32_t>(newDepth);
    frame::OwnedVolume result(frame::GlobalAlloc3D(source.width, source.height, depth, 0));
    if (!result) return nullptr;
    if (host.Start() == frame::Answer::Cancel) return nullptr;

    if (newDepth != 0) range = ValueRange();
    const DepthPositions positions(source.depth, newDepth);
    std::int32_t firstKept = 0;
    for (std::int32_t z = 0; z < newDepth; ++z) {
        // Positions only grow, so what lies below this one is not needed any more.
        const Neighbours at = positions.Of(z);
        for (; firstKept < at.lower; ++firstKept)
            frame::FreeSlice(&source, static_cast<std::size_t>(firstKept));

        Image2D* lower = source.slices[at.lower];
        Image2D* slice = frame::AllocUnset2D(source.width, source.height, lower->bytesPerPixel);
        result->slices[z] = slice;
        if (slice == nullptr) return nullptr;
        if (!BlendSlices(lower, source.slices[at.upper], {at.t, bounds}, slice, range)) return nullptr;
        if (host.Progress(z, newDepth) == frame::Answer::Cancel) return nullptr;
    }
    return result;
}

} // namespace z3d::volume
