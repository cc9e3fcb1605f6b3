// From exact positions to voxel indexes, sixteen samples of sixteen rays at a time.
#pragma once

#include "render/Projection.h"
#include "render/StretchIndexes.h"
#include "render/kernels/rays/PacketRays.h"
#include "render/kernels/vector/Vector.h"

namespace z3d::render::Z3D_ISA {

// The nearest voxel to a coordinate c is trunc(c + 0.49), in doubles, clamped to the volume. For floats that
// equals i = trunc(c), plus 1 where c - i > 0.51f, with c clamped first: so for every float of the interval
// (-2, 65536), as NearestIndexTest checks. The addition rounded in single precision differs.
constexpr float kUpperPart = 0.51f;
// The second float below 0.49: added with rounding toward zero, the sum has that integer part, too.
[[maybe_unused]] constexpr float kToUpper = 0x1.f5c28cp-2f;

// The indexes that may be sampled on each axis.
struct SampledIndexes {
    std::int32_t first[3];
    std::int32_t last[3];

    SampledIndexes(const VoxelGrid& grid, std::int32_t margin) {
        const std::int32_t sizes[3] = {grid.width, grid.height, grid.depth};
        for (int axis = 0; axis < 3; ++axis) {
            first[axis] = margin;
            last[axis] = sizes[axis] - 1 - margin;
            // An axis too short for the margin has no inner voxel: one voxel of the volume stands for all.
            if (first[axis] > last[axis]) first[axis] = last[axis] = last[axis] < 0 ? 0 : last[axis];
        }
    }
};

// Turns positions into voxel indexes, and leaves the positions behind the last sample.
class SampleStepper {
public:
    SampleStepper(const Projection& projection, const RayShape& shape)
        : SampleStepper(
            projection.grid, shape,
            {projection.view.Inverse(0, 2), projection.view.Inverse(1, 2), projection.view.Inverse(2, 2)}) {}

    // For a grid and steps whose axes may be others than the volume's.
    SampleStepper(const VoxelGrid& grid, const RayShape& shape, const float (&steps)[3]) {
        const SampledIndexes sampled(grid, shape.margin);
        for (int axis = 0; axis < 3; ++axis) {
            step_[axis] = AllFloats(shape.backToFront ? -steps[axis] : steps[axis]);
            first_[axis] = AllFloats(static_cast<float>(sampled.first[axis]));
            last_[axis] = AllFloats(static_cast<float>(sampled.last[axis]));
        }
        width_ = static_cast<std::uint32_t>(grid.width);
        upperPart_ = AllFloats(kUpperPart);
        factors_ = FactorsFor(width_);
        isSmallPlane_ = grid.width < (1 << 15) && grid.height < (1 << 15);
    }

    // The indexes of the next samples, and their positions where those are to be kept.
    void NextStretch(Positions& positions, int samples, Indexes& indexes, bool keepsPositions) const {
        // Sides beyond 2^15 are rare: one form has to do for them.
        if (!isSmallPlane_) return Step<false, true>(positions, samples, indexes);
        if (keepsPositions) return Step<true, true>(positions, samples, indexes);
        Step<true, false>(positions, samples, indexes);
    }

    // Passes over a whole stretch. Only repeated additions give the positions that samples have.
    [[gnu::noinline]] void SkipStretch(Positions& positions) const {
        for (int axis = 0; axis < 3; ++axis)
            SkipOnAxis(positions.axis[axis], step_[axis]);
    }

private:
    static constexpr int kParts = kRays / kFloatLanes;

    // All rays on one axis: one addition per sample, kept in registers throughout.
    Z3D_INLINE static void SkipOnAxis(float* positions, Floats step) {
        Floats at[kParts];
#pragma GCC unroll kParts
        for (int part = 0; part < kParts; ++part)
            at[part] = LoadFloats(positions + part * kFloatLanes);
#pragma GCC unroll 4
        for (int sample = 0; sample < kSamples; ++sample) {
#pragma GCC unroll kParts
            for (Floats& part : at)
                part += step;
        }
#pragma GCC unroll kParts
        for (int part = 0; part < kParts; ++part)
            Store(positions + part * kFloatLanes, at[part]);
    }

    // The samples of as many rays as a vector has lanes, one after another. Small planes take 16-bit products.
    template <bool kSmallPlane, bool kKeepPositions>
    [[gnu::noinline]] void Step(Positions& positions, int samples, Indexes& indexes) const {
        for (int lane = 0; lane < kRays; lane += kFloatLanes) {
            Floats x = LoadFloats(positions.axis[0] + lane);
            Floats y = LoadFloats(positions.axis[1] + lane);
            Floats z = LoadFloats(positions.axis[2] + lane);
            for (int sample = 0; sample < samples; ++sample) {
                // Take the nearest voxel.
                const Ints column = Nearest(x, 0);
                const Ints row = Nearest(y, 1);
                if constexpr (kSmallPlane) {
                    Store(indexes.plane[sample] + lane, RowTimesWidth(row, column, factors_));
                } else {
                    Store(indexes.plane[sample] + lane,
                          reinterpret_cast<Uints>(row) * width_ + reinterpret_cast<Uints>(column));
                }
                Store(indexes.z[sample] + lane, reinterpret_cast<Uints>(Nearest(z, 2)));
                if constexpr (kKeepPositions) {
                    Store(indexes.position[0][sample] + lane, x);
                    Store(indexes.position[1][sample] + lane, y);
                    Store(indexes.position[2][sample] + lane, z);
                }
                // Go on by a step, rounded to single precision.
                x += step_[0];
                y += step_[1];
                z += step_[2];
            }
            Store(positions.axis[0] + lane, x);
            Store(positions.axis[1] + lane, y);
            Store(positions.axis[2] + lane, z);
        }
    }

    // The nearest index that is sampled. Clamped first, so that every coordinate can be truncated.
    Z3D_INLINE Ints Nearest(Floats coordinate, int axis) const {
        const Floats inside = Min(Max(coordinate, first_[axis]), last_[axis]);
#if Z3D_VECTOR_BYTES == 64
        const __m512 sum = _mm512_add_round_ps(reinterpret_cast<__m512>(inside), _mm512_set1_ps(kToUpper),
                                               _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
        return reinterpret_cast<Ints>(_mm512_cvttps_epi32(sum));
#else
        const Ints whole = Truncate(inside);
        return whole - IsAbove(inside - ToFloats(whole), upperPart_);
#endif
    }

    // Whole vectors: instructions take them from memory, which leaves registers to the positions.
    Floats step_[3];
    Floats first_[3]; // smallest and largest index that is sampled
    Floats last_[3];
    Floats upperPart_;
    Ints factors_;
    std::uint32_t width_;
    bool isSmallPlane_;
};

} // namespace z3d::render::Z3D_ISA
