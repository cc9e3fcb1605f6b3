// Mode 3, shaded surfaces. A voxel belongs to the material when its value lies strictly inside the window.
// First surface (extra = 0): the shade where a ray first meets the material. Layered surfaces: the sum of the
// shades of all its entries into the material, the n-th, from 0, weighted by extra to the power n. Colour
// scales the voxel's chromaticity (each channel's share of the sum) by the shade.
//
// Departures from the frame:
// - a pixel without a surface holds 0, and the window is strict
// - volumes of 3 and more slices are sampled one voxel inside their border, so that gradients stay inside
// - volumes of 1 or 2 slices are not shaded; the grey first surface then looks at the first sample alone
#include "render/isa/Kernels.h"
#include "render/isa/Render.h"
#include "render/isa/SurfaceShade.h"

namespace z3d::render::Z3D_ISA {
namespace {

template <class VoxelFormat>
struct SurfaceRule : RuleDefaults {
    using Format = VoxelFormat;
    static constexpr float kInitial = 0;
    typename Format::Window window;
    SurfaceShade<Format> shade;

    explicit SurfaceRule(const ProjectionJob& job)
        : window(StrictRange(Format::kLargest, job.low, job.high)), shade(job) {}

    std::int32_t Margin() const { return shade.IsShaded() ? 1 : 0; }
};

template <class VoxelFormat>
struct First : SurfaceRule<VoxelFormat> {
    using Base = SurfaceRule<VoxelFormat>;
    using Base::Base;
    static constexpr int kFirstLook = 2;
    static constexpr int kLook = 8;
    struct Lanes {
        float pixel[kRays][3];
        Bytes isFound;
    };

    std::int32_t SampleLimit() const {
        return VoxelFormat::kBytes == 1 && !this->shade.IsShaded() ? 1 : INT32_MAX;
    }
    Z3D_INLINE void Sample(const typename Base::Format::Sample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes isFirst = this->window.Accepts(sample) & isValid & ~lanes.isFound;
        lanes.isFound |= isFirst;
        for (unsigned rays = BitsOf(isFirst); rays != 0; rays &= rays - 1) {
            const int ray = __builtin_ctz(rays);
            this->shade.AddTo(lanes.pixel[ray], sample.at, ray, 1.0f);
        }
    }
    Z3D_INLINE Bytes Ended(const Lanes& lanes) const { return lanes.isFound; }
    Z3D_INLINE Bytes Wants(Bytes bound, const Lanes& lanes) const {
        return ~AreEqual(bound, Bytes{}) & ~lanes.isFound;
    }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        for (int c = 0; c < 3; ++c)
            pixel[c] = lanes.pixel[ray][c];
    }
};

template <class VoxelFormat>
struct Layered : SurfaceRule<VoxelFormat> {
    using Base = SurfaceRule<VoxelFormat>;
    struct Lanes {
        float pixel[kRays][3];
        float weight[kRays]; // of the next entry, once there was one
        Bytes isInside;
        Bytes hasEntered;
    };
    float attenuation;

    explicit Layered(const ProjectionJob& job) : Base(job), attenuation(job.extra) {}

    Z3D_INLINE void Sample(const typename Base::Format::Sample& sample, Bytes isValid, Lanes& lanes) const {
        const Bytes isMaterial = this->window.Accepts(sample) & isValid;
        const Bytes enters = isMaterial & ~lanes.isInside;
        lanes.isInside = isMaterial;
        for (unsigned rays = BitsOf(enters); rays != 0; rays &= rays - 1) {
            const int ray = __builtin_ctz(rays);
            if (!lanes.hasEntered[ray]) lanes.weight[ray] = 1;
            this->shade.AddTo(lanes.pixel[ray], sample.at, ray, lanes.weight[ray]);
            lanes.weight[ray] *= attenuation;
        }
        lanes.hasEntered |= enters;
    }
    // What was passed over is outside the material.
    Z3D_INLINE void PassOver(Lanes& lanes) const { lanes.isInside = Bytes{}; }
    void Finish(const Lanes& lanes, int ray, float* pixel) const {
        for (int c = 0; c < 3; ++c)
            pixel[c] = lanes.pixel[ray][c];
    }
};

} // namespace

void FirstSurfaceGrey(const ProjectionJob& job) { RenderPackets(job, First<Grey>(job), job.grid); }
void FirstSurfaceRgb(const ProjectionJob& job) { RenderPackets(job, First<Rgb>(job), job.grid); }
void LayeredSurfaceGrey(const ProjectionJob& job) { RenderPackets(job, Layered<Grey>(job), job.grid); }
void LayeredSurfaceRgb(const ProjectionJob& job) { RenderPackets(job, Layered<Rgb>(job), job.grid); }

} // namespace z3d::render::Z3D_ISA
