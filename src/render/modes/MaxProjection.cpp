// Mode 0, maximum-intensity projection: the largest voxel of each ray that lies in the window.
//
// Departures from the frame:
// - grey takes one sample past the trimmed range: the border voxel again, or the one just beyond the crop box
// - colour tests the window on the channel sum, but keeps the maximum of each channel by itself
#include "render/isa/Extreme.h"
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

struct MaxGrey : GreyExtremeRule<MaxGrey> {
    using GreyExtremeRule::GreyExtremeRule;
    static constexpr std::int32_t kSamplesPastEnd = 1;
    static constexpr Measure kMeasure = Measure::Largeness;
    Z3D_INLINE static Bytes RankOf(Bytes value) { return value; }
};

struct MaxRgb : RgbExtremeRule<MaxRgb> {
    using RgbExtremeRule::RgbExtremeRule;
    static constexpr Measure kMeasure = Measure::Largeness; // of any channel
    Z3D_INLINE static Bytes RankOf(Bytes value) { return value; }
};

} // namespace

void MaxProjectionGrey(const ProjectionJob& job) { RenderBestFirst(job, MaxGrey(job)); }
void MaxProjectionRgb(const ProjectionJob& job) { RenderWith(job, MaxRgb(job)); }

} // namespace z3d::render::Z3D_ISA
