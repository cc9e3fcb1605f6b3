// Sixteen samples of each of the sixteen rays of a packet: from exact positions to voxels.
#pragma once

#include "render/ProjectionJob.h"
#include "render/isa/Vector.h"

namespace z3d::render::Z3D_ISA {

constexpr int kRays = 16;    // of a packet: 4 x 4 neighbouring pixels
constexpr int kSamples = 16; // of a stretch

// Where the next sample of each ray lies, in volume index space.
struct alignas(64) Positions {
    float axis[3][kRays];
};

// Voxel indexes of a stretch. `plane` counts voxels from the first one of slice z.
struct alignas(64) Indexes {
    std::uint32_t z[kSamples][kRays];
    std::uint32_t plane[kSamples][kRays];
    float position[3][kSamples][kRays]; // filled on request
};

// The nearest voxel to a coordinate c is trunc(c + 0.49), in doubles, clamped to the volume. For floats that
// equals i = trunc(c), plus 1 where c - i > 0.51f, with c clamped first: checked for every float of the
// interval (-2, 65536). The addition rounded in single precision differs.
constexpr float kUpperPart = 0.51f;

// The indexes that may be sampled on each axis, and the nearest one to a single coordinate.
struct NearestIndex {
    std::int32_t first[3];
    std::int32_t last[3];

    NearestIndex(const ProjectionJob& job, std::int32_t margin) {
        const std::int32_t sizes[3] = {job.grid.width, job.grid.height, job.grid.depth};
        for (int axis = 0; axis < 3; ++axis) {
            first[axis] = margin;
            last[axis] = sizes[axis] - 1 - margin;
            // An axis too short for the margin has no inner voxel: one voxel of the volume stands for all.
            if (first[axis] > last[axis]) first[axis] = last[axis] = last[axis] < 0 ? 0 : last[axis];
        }
    }
    Z3D_INLINE std::int32_t Clamp(std::int32_t index, int axis) const {
        return index < first[axis] ? first[axis] : (index > last[axis] ? last[axis] : index);
    }
    Z3D_INLINE std::int32_t Index(float coordinate, int axis) const {
        const auto low = static_cast<float>(first[axis]);
        const auto high = static_cast<float>(last[axis]);
        const float inside = coordinate > low ? (coordinate < high ? coordinate : high) : low;
        const auto whole = static_cast<std::int32_t>(inside);
        return whole + (inside - static_cast<float>(whole) > kUpperPart ? 1 : 0);
    }
};

// Turns positions into voxel indexes, 16 samples per ray, and leaves the positions behind the last sample.
class IndexWalk {
public:
    explicit IndexWalk(const ProjectionJob& job, bool backToFront, std::int32_t margin) {
        const NearestIndex nearest(job, margin);
        for (int axis = 0; axis < 3; ++axis) {
            const float step = job.geometry.inverse[3 * axis + 2];
            step_[axis] = AllFloats(backToFront ? -step : step);
            first_[axis] = AllFloats(static_cast<float>(nearest.first[axis]));
            last_[axis] = AllFloats(static_cast<float>(nearest.last[axis]));
        }
        width_ = static_cast<std::uint32_t>(job.grid.width);
        upperPart_ = AllFloats(kUpperPart);
        factors_ = FactorsFor(width_);
        isSmallPlane_ = job.grid.width < (1 << 15) && job.grid.height < (1 << 15);
    }

    template <bool kKeepPositions>
    Z3D_INLINE void NextStretch(Positions& positions, int samples, Indexes& indexes) const {
        if (isSmallPlane_) {
            Walk<true, kKeepPositions>(positions, samples, indexes);
        } else {
            Walk<false, kKeepPositions>(positions, samples, indexes);
        }
    }

    // Moves on by a whole stretch without looking. Only repeated additions give the positions that samples have.
    [[gnu::noinline]] void Skip(Positions& positions) const {
        for (int axis = 0; axis < 3; ++axis)
            SkipOnAxis(positions.axis[axis], step_[axis]);
    }

private:
    static constexpr int kParts = kRays / kFloatLanes;

    Z3D_INLINE static void SkipOnAxis(float* positions, Floats step) {
        Floats at[kParts];
#pragma GCC unroll kParts
        for (int part = 0; part < kParts; ++part)
            at[part] = LoadFloats(positions + part * kFloatLanes);
#pragma GCC unroll 4
        for (int sample = 0; sample < kSamples; ++sample) {
#pragma GCC unroll kParts
            for (int part = 0; part < kParts; ++part)
                at[part] += step;
        }
#pragma GCC unroll kParts
        for (int part = 0; part < kParts; ++part)
            Store(positions + part * kFloatLanes, at[part]);
    }

    template <bool kSmallPlane, bool kKeepPositions>
    [[gnu::noinline]] void Walk(Positions& positions, int samples, Indexes& indexes) const {
        for (int lane = 0; lane < kRays; lane += kFloatLanes) {
            Floats x = LoadFloats(positions.axis[0] + lane);
            Floats y = LoadFloats(positions.axis[1] + lane);
            Floats z = LoadFloats(positions.axis[2] + lane);
            for (int sample = 0; sample < samples; ++sample) {
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
                x += step_[0];
                y += step_[1];
                z += step_[2];
            }
            Store(positions.axis[0] + lane, x);
            Store(positions.axis[1] + lane, y);
            Store(positions.axis[2] + lane, z);
        }
    }

    Z3D_INLINE Ints Nearest(Floats coordinate, int axis) const {
        const Floats inside = Min(Max(coordinate, first_[axis]), last_[axis]);
#if Z3D_VECTOR_BYTES == 64
        // Rounded toward zero, the sum with the largest float below 0.49 is exact enough to be truncated.
        const __m512 sum =
            _mm512_add_round_ps(reinterpret_cast<__m512>(inside), _mm512_set1_ps(0x1.f5c28cp-2f),
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

// The voxels of a stretch by format, one byte per ray and channel.
struct GreyStretch {
    Bytes value[kSamples];
};
struct RgbStretch {
    Bytes channel[kSamples][3];
};

// One channel of sixteen voxels, each in the low bytes of a word.
Z3D_INLINE Bytes PlaneOf(const std::uint32_t (&words)[kRays], int channel) {
    const auto* quads = reinterpret_cast<const __m128i*>(words);
    __m128i part[4];
    for (int quad = 0; quad < 4; ++quad) {
        part[quad] =
            _mm_and_si128(_mm_srli_epi32(_mm_load_si128(quads + quad), 8 * channel), _mm_set1_epi32(0xFF));
    }
    return reinterpret_cast<Bytes>(
        _mm_packus_epi16(_mm_packs_epi32(part[0], part[1]), _mm_packs_epi32(part[2], part[3])));
}

// Voxels are fetched one by one: computed offsets and plain loads beat hardware gathers. Functions of their
// own, so that their stores are known not to alias the tables.
[[gnu::noinline]] inline void Fetch(const VoxelGrid& grid, const Indexes& __restrict indexes, int samples,
                                    GreyStretch& __restrict stretch) {
    const std::uint8_t* const* slices = grid.slices;
    auto* __restrict to = reinterpret_cast<std::uint8_t*>(stretch.value);
    const std::uint32_t* z = indexes.z[0];
    const std::uint32_t* plane = indexes.plane[0];
    for (int index = 0; index < samples * kRays; ++index)
        to[index] = slices[z[index]][plane[index]];
}

[[gnu::noinline]] inline void Fetch(const VoxelGrid& grid, const Indexes& __restrict indexes, int samples,
                                    RgbStretch& __restrict stretch) {
    const std::uint8_t* const* slices = grid.slices;
    const std::uint32_t lastVoxel =
        static_cast<std::uint32_t>(grid.width) * static_cast<std::uint32_t>(grid.height) - 1;
    for (int sample = 0; sample < samples; ++sample) {
        alignas(16) std::uint32_t words[kRays];
        for (int ray = 0; ray < kRays; ++ray) {
            const std::uint32_t voxel = indexes.plane[sample][ray];
            const std::uint8_t* from = slices[indexes.z[sample][ray]] + std::size_t{3} * voxel;
            // Four bytes at once, except for a slice's last voxel: nothing is read beyond the slice.
            if (voxel != lastVoxel) {
                __builtin_memcpy(&words[ray], from, 4);
            } else {
                words[ray] = static_cast<std::uint32_t>(from[0] | from[1] << 8 | from[2] << 16);
            }
        }
        for (int channel = 0; channel < 3; ++channel) {
            stretch.channel[sample][channel] = PlaneOf(words, channel);
        }
    }
}

} // namespace z3d::render::Z3D_ISA
