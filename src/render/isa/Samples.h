// What a rule sees of one sample of sixteen rays, and the window tests on it.
#pragma once

#include "render/ValueWindow.h"
#include "render/isa/Stretch.h"

namespace z3d::render::Z3D_ISA {

Z3D_INLINE __m128i Raw(Bytes value) { return reinterpret_cast<__m128i>(value); }
Z3D_INLINE Bytes ToBytes(__m128i value) { return reinterpret_cast<Bytes>(value); }
Z3D_INLINE Bytes Smaller(Bytes a, Bytes b) { return ToBytes(_mm_min_epu8(Raw(a), Raw(b))); }
Z3D_INLINE Bytes Larger(Bytes a, Bytes b) { return ToBytes(_mm_max_epu8(Raw(a), Raw(b))); }
Z3D_INLINE Bytes AreEqual(Bytes a, Bytes b) { return ToBytes(_mm_cmpeq_epi8(Raw(a), Raw(b))); }

// Sums of up to three bytes, one per ray: rays 0 to 7 and 8 to 15.
struct Sums {
    __m128i low;
    __m128i high;
};

// Where the sampled voxels lie, for rules that look at neighbours.
struct SampleIndexes {
    const Indexes* indexes;
    int sample;
    std::uint32_t Z(int ray) const { return indexes->z[sample][ray]; }
    std::uint32_t Plane(int ray) const { return indexes->plane[sample][ray]; }
};

struct GreySample {
    Bytes value;
    SampleIndexes at;
};

// The same under a window that accepts every value.
struct AcceptedGrey {
    Bytes value;
};

struct RgbSample {
    Bytes channel[3];
    SampleIndexes at;

    Sums Sum() const {
        const __m128i zero = _mm_setzero_si128();
        Sums sums = {zero, zero};
        for (const Bytes& part : channel) {
            sums.low = _mm_add_epi16(sums.low, _mm_unpacklo_epi8(Raw(part), zero));
            sums.high = _mm_add_epi16(sums.high, _mm_unpackhi_epi8(Raw(part), zero));
        }
        return sums;
    }
};

// A window on grey values: value - first <= last - first, in bytes without sign.
class GreyWindow {
public:
    explicit GreyWindow(ValueRange range)
        : range_(range),
          isFull_(range.first == 0 && range.last == kLargestGrey),
          first_(AllBytes(static_cast<std::uint8_t>(range.first))),
          span_(AllBytes(static_cast<std::uint8_t>(range.last - range.first))) {}
    bool IsEmpty() const { return range_.IsEmpty(); }
    bool IsFull() const { return range_.first == 0 && range_.last == kLargestGrey; }
    const ValueRange& Range() const { return range_; }

    // 0xFF for the rays whose sample is accepted. The window must not be empty.
    Z3D_INLINE static Bytes Accepts(const AcceptedGrey&) { return AllBytes(0xFF); }
    Z3D_INLINE Bytes Accepts(const GreySample& sample) const {
        if (isFull_) return AllBytes(0xFF);
        const Bytes above = sample.value - first_;
        return AreEqual(Smaller(above, span_), above);
    }

private:
    ValueRange range_;
    bool isFull_;
    Bytes first_;
    Bytes span_;
};

// A window on channel sums.
class RgbWindow {
public:
    explicit RgbWindow(ValueRange range)
        : range_(range),
          isFull_(range.first == 0 && range.last == kLargestSum),
          first_(_mm_set1_epi16(static_cast<short>(range.first))),
          span_(_mm_set1_epi16(static_cast<short>(range.last - range.first))) {}
    bool IsEmpty() const { return range_.IsEmpty(); }
    const ValueRange& Range() const { return range_; }

    Z3D_INLINE Bytes Accepts(const RgbSample& sample) const {
        if (isFull_) return AllBytes(0xFF);
        const Sums sums = sample.Sum();
        return ToBytes(_mm_packs_epi16(Covers(sums.low), Covers(sums.high)));
    }

private:
    // Saturated, nothing is left of value - first - span inside the window.
    Z3D_INLINE __m128i Covers(__m128i sums) const {
        return _mm_cmpeq_epi16(_mm_subs_epu16(_mm_sub_epi16(sums, first_), span_), _mm_setzero_si128());
    }
    ValueRange range_;
    bool isFull_;
    __m128i first_;
    __m128i span_;
};

// How each voxel format is fetched and windowed.
struct Grey {
    static constexpr int kBytes = 1;
    static constexpr std::int32_t kLargest = kLargestGrey;
    using Stretch = GreyStretch;
    using Sample = GreySample;
    using Window = GreyWindow;
    using Grid = const VoxelGrid&;
    Z3D_INLINE static Sample SampleOf(const Stretch& stretch, const Indexes& indexes, int sample) {
        return {stretch.value[sample], {&indexes, sample}};
    }
    Z3D_INLINE static std::int32_t ValueOf(const std::uint8_t* voxel) { return voxel[0]; }
};
struct Rgb {
    static constexpr int kBytes = 3;
    static constexpr std::int32_t kLargest = kLargestSum;
    using Stretch = RgbStretch;
    using Sample = RgbSample;
    using Window = RgbWindow;
    using Grid = const VoxelGrid&;
    Z3D_INLINE static Sample SampleOf(const Stretch& stretch, const Indexes& indexes, int sample) {
        const Bytes(&channel)[3] = stretch.channel[sample];
        return {{channel[0], channel[1], channel[2]}, {&indexes, sample}};
    }
    Z3D_INLINE static std::int32_t ValueOf(const std::uint8_t* voxel) {
        return voxel[0] + voxel[1] + voxel[2];
    }
};

// Sixteen voxels side by side.
template <class Format>
Z3D_INLINE typename Format::Sample LoadSixteen(const std::uint8_t* voxels);

template <>
Z3D_INLINE GreySample LoadSixteen<Grey>(const std::uint8_t* voxels) {
    return {ToBytes(_mm_loadu_si128(reinterpret_cast<const __m128i*>(voxels))), {}};
}

// The channels of sixteen voxels: 48 bytes, riffled four times. A riffle moves byte i to 2i mod 47, so four of them
// move channel c of voxel v from 3v + c to 16c + v.
Z3D_INLINE void SplitChannels(Bytes (&bytes)[3]) {
#pragma GCC unroll 4
    for (int riffle = 0; riffle < 4; ++riffle) {
        const __m128i a = Raw(bytes[0]);
        const __m128i b = Raw(bytes[1]);
        const __m128i c = Raw(bytes[2]);
        bytes[0] = ToBytes(_mm_unpacklo_epi8(a, _mm_unpackhi_epi64(b, b)));
        bytes[1] = ToBytes(_mm_unpacklo_epi8(_mm_unpackhi_epi64(a, a), c));
        bytes[2] = ToBytes(_mm_unpacklo_epi8(b, _mm_unpackhi_epi64(c, c)));
    }
}

template <>
Z3D_INLINE RgbSample LoadSixteen<Rgb>(const std::uint8_t* voxels) {
    Bytes channel[3];
    __builtin_memcpy(&channel, voxels, sizeof channel);
    SplitChannels(channel);
    return {{channel[0], channel[1], channel[2]}, {}};
}

} // namespace z3d::render::Z3D_ISA
