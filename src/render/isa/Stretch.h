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

// The indexes that may be sampled on each axis.
struct SampledIndexes {
    std::int32_t first[3];
    std::int32_t last[3];

    SampledIndexes(const ProjectionJob& job, std::int32_t margin) {
        const std::int32_t sizes[3] = {job.grid.width, job.grid.height, job.grid.depth};
        for (int axis = 0; axis < 3; ++axis) {
            first[axis] = margin;
            last[axis] = sizes[axis] - 1 - margin;
            // An axis too short for the margin has no inner voxel: one voxel of the volume stands for all.
            if (first[axis] > last[axis]) first[axis] = last[axis] = last[axis] < 0 ? 0 : last[axis];
        }
    }
};

// Turns positions into voxel indexes, 16 samples per ray, and leaves the positions behind the last sample.
class IndexWalk {
public:
    explicit IndexWalk(const ProjectionJob& job, bool backToFront, std::int32_t margin) {
        const SampledIndexes sampled(job, margin);
        for (int axis = 0; axis < 3; ++axis) {
            const float step = job.geometry.inverse[3 * axis + 2];
            step_[axis] = AllFloats(backToFront ? -step : step);
            first_[axis] = AllFloats(static_cast<float>(sampled.first[axis]));
            last_[axis] = AllFloats(static_cast<float>(sampled.last[axis]));
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
            for (Floats& part : at)
                part += step;
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

// The bytes of sixteen words, of which the first three count: 64 bytes, riffled four times. A riffle moves byte i to
// 2i mod 63, so four of them move byte c of word r from 4r + c to 16c + r.
Z3D_INLINE void SplitWords(const std::uint32_t (&words)[kRays], Bytes (&channel)[3]) {
    __m128i a = _mm_load_si128(reinterpret_cast<const __m128i*>(words));
    __m128i b = _mm_load_si128(reinterpret_cast<const __m128i*>(words) + 1);
    __m128i c = _mm_load_si128(reinterpret_cast<const __m128i*>(words) + 2);
    __m128i d = _mm_load_si128(reinterpret_cast<const __m128i*>(words) + 3);
#pragma GCC unroll 4
    for (int riffle = 0; riffle < 4; ++riffle) {
        const __m128i first = _mm_unpacklo_epi8(a, c);
        const __m128i second = _mm_unpackhi_epi8(a, c);
        c = _mm_unpacklo_epi8(b, d);
        d = _mm_unpackhi_epi8(b, d);
        a = first;
        b = second;
    }
    channel[0] = reinterpret_cast<Bytes>(a);
    channel[1] = reinterpret_cast<Bytes>(b);
    channel[2] = reinterpret_cast<Bytes>(c);
}

// Voxels are fetched one by one: computed offsets and plain loads beat hardware gathers. Functions of their
// own, so that their stores are known not to alias the tables.
[[gnu::noinline]] inline void Fetch(const VoxelGrid& grid, const Indexes& __restrict indexes, int samples,
                                    GreyStretch& __restrict stretch) {
    const std::uint8_t* const* slices = grid.slices;
    auto* __restrict to = reinterpret_cast<std::uint8_t*>(stretch.value);
    const std::uint32_t* z = indexes.z[0];
    const std::uint32_t* plane = indexes.plane[0];
    const int last = samples * kRays;
#pragma GCC unroll 8
    for (int index = 0; index < last; ++index)
        to[index] = slices[z[index]][plane[index]];
}

// Sixteen colours as words. A slice's last voxel has nothing behind it that may be read: it is read with the byte
// before it.
Z3D_INLINE void FetchWords(const VoxelGrid& grid, const std::uint32_t* z, const std::uint32_t* plane,
                           std::uint32_t last, std::uint32_t* words) {
    const std::uint8_t* const* slices = grid.slices;
    if (last == 0) {
        for (int ray = 0; ray < kRays; ++ray) {
            const std::uint8_t* voxel = slices[z[ray]];
            words[ray] = static_cast<std::uint32_t>(voxel[0] | voxel[1] << 8 | voxel[2] << 16);
        }
        return;
    }
    alignas(64) std::uint32_t offset[kRays];
    Uints isAnyLast = {};
    for (int ray = 0; ray < kRays; ray += kFloatLanes) {
        const Uints voxel = LoadUints(plane + ray);
        const Uints isLast = reinterpret_cast<Uints>(voxel == last);
        Store(offset + ray, voxel + voxel + voxel + isLast);
        isAnyLast |= isLast;
    }
#pragma GCC unroll 8
    for (int ray = 0; ray < kRays; ++ray)
        __builtin_memcpy(&words[ray], slices[z[ray]] + offset[ray], 4);
    if (!AnySet(isAnyLast)) return;
    for (int ray = 0; ray < kRays; ++ray)
        words[ray] >>= plane[ray] == last ? 8 : 0;
}

[[gnu::noinline]] inline void Fetch(const VoxelGrid& grid, const Indexes& __restrict indexes, int samples,
                                    RgbStretch& __restrict stretch) {
    const std::uint32_t last =
        static_cast<std::uint32_t>(grid.width) * static_cast<std::uint32_t>(grid.height) - 1;
    // All words first: a vector load waits for narrower stores to its bytes that are still under way.
    alignas(64) std::uint32_t words[kSamples][kRays];
    for (int sample = 0; sample < samples; ++sample)
        FetchWords(grid, indexes.z[sample], indexes.plane[sample], last, words[sample]);
    for (int sample = 0; sample < samples; ++sample)
        SplitWords(words[sample], stretch.channel[sample]);
}

} // namespace z3d::render::Z3D_ISA
