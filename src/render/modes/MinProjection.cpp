// Mode 1, minimum-intensity projection: the smallest voxel of each ray that lies in the window.
//
// Departures from the frame:
// - a pixel without a contribution holds the largest float
// - colour tests the window on the channel sum, but keeps the minimum of each channel by itself
#include "render/isa/Extreme.h"
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"

namespace z3d::render::Z3D_ISA {
namespace {

struct MinGrey : GreyExtremeRule<MinGrey> {
    using GreyExtremeRule::GreyExtremeRule;
    static constexpr float kInitial = kHighestFloat;
    static constexpr Measure kMeasure = Measure::Smallness;
    Z3D_INLINE static Bytes RankOf(Bytes value) { return ~value; }
};

struct MinRgb : RgbExtremeRule<MinRgb> {
    using RgbExtremeRule::RgbExtremeRule;
    static constexpr float kInitial = kHighestFloat;
    static constexpr Measure kMeasure = Measure::Smallness; // of any channel
    Z3D_INLINE static Bytes RankOf(Bytes value) { return ~value; }
};

} // namespace

void MinProjectionGrey(const ProjectionJob& job) { RenderBestFirst(job, MinGrey(job)); }
void MinProjectionRgb(const ProjectionJob& job) { RenderWith(job, MinRgb(job)); }

} // namespace z3d::render::Z3D_ISA
