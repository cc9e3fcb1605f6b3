// Three channels as pixels of three bytes: each sample becomes a 16-bit word of 0 to 255, three words are added up for
// the range of the sums, and then packed to bytes and interleaved.
#include "primitives/isa/Kernels.h"

#if !defined(__AVX2__)
#include "primitives/Interleave.h"
#endif

#include <algorithm>
#include <cstring>

namespace z3d::primitives::Z3D_ISA {
namespace {

constexpr std::size_t kBlock = kRegisterBytes; // pixels
static_assert(kBlock <= kChannelBlock);

// The words of a block, in the order that unpacking its bytes gives and packing takes.
struct Words {
    Integers low, high;
};

// A byte b becomes round((b * (max - min) + 255 * min) / 255). That quotient is never half-way between two integers,
// and the roundings of the primitives, 2^-16 at most, are too small to carry it there. For 16 bits x,
// ((x + 128) * 257) >> 16 is x / 255 rounded.
class ByteMap {
public:
    using Sample = std::uint8_t;

    explicit ByteMap(ByteRange range)
        : factor_(Z3D_MM(set1_epi16)(static_cast<short>(range.max - range.min))),
          offset_(Z3D_MM(set1_epi16)(static_cast<short>(255 * range.min + 128))) {}

    Z3D_INLINE Words operator()(const std::uint8_t* samples) const {
        const Integers bytes = Load(samples);
        return {Map(Z3D_MM(unpacklo_epi8)(bytes, Zeroes())), Map(Z3D_MM(unpackhi_epi8)(bytes, Zeroes()))};
    }

private:
    Z3D_INLINE Integers Map(Integers words) const {
        const Integers scaled = Z3D_MM(add_epi16)(Z3D_MM(mullo_epi16)(words, factor_), offset_);
        return Z3D_MM(mulhi_epu16)(scaled, Z3D_MM(set1_epi16)(257));
    }

    Integers factor_, offset_;
};

// The rule of Scale32f8uC3: r = trunc(t) of t = x * slope + offset, one less where t is an odd integer; that is t - 0.5
// rounded to nearest, ties to even (see there). With finite ends t is 255.5 at vMax but for roundings far below a
// half, and grows with x: so values from vMax on are cut to 255, and those up to vMin round to 0 or less. What is not
// a number converts to the most negative integer, and so becomes 0.
class FloatMap {
public:
    using Sample = float;

    explicit FloatMap(FloatScale scale)
        : slope_(Z3D_MM(set1_pd)(scale.slope)), offset_(Z3D_MM(set1_pd)(scale.offset)) {}

    Z3D_INLINE Words operator()(const float* samples) const {
#if defined(__AVX2__)
        // Each half of a register holds the samples of its own half of the block.
        return {Eights(samples, samples + 16), Eights(samples + 8, samples + 24)};
#else
        return {Eight(samples), Eight(samples + 8)};
#endif
    }

private:
    Z3D_INLINE Doubles Scaled(Doubles values) const {
        const Doubles t = Z3D_MM(add_pd)(Z3D_MM(mul_pd)(values, slope_), offset_);
        // The minimum takes its second operand when that is not a number.
        return Z3D_MM(min_pd)(Z3D_MM(set1_pd)(255.0), Z3D_MM(sub_pd)(t, Z3D_MM(set1_pd)(0.5)));
    }

#if defined(__AVX2__)
    Z3D_INLINE __m128i Four(const float* samples) const {
        return _mm256_cvtpd_epi32(Scaled(_mm256_cvtps_pd(_mm_loadu_ps(samples))));
    }
    Z3D_INLINE Integers Eights(const float* lower, const float* upper) const {
        const __m256i first = _mm256_set_m128i(Four(upper), Four(lower));
        const __m256i second = _mm256_set_m128i(Four(upper + 4), Four(lower + 4));
        return _mm256_max_epi16(_mm256_packs_epi32(first, second), Zeroes());
    }
#else
    Z3D_INLINE __m128i Two(const float* samples) const {
        const __m128i pair = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples));
        return _mm_cvtpd_epi32(Scaled(_mm_cvtps_pd(_mm_castsi128_ps(pair))));
    }
    Z3D_INLINE __m128i Four(const float* samples) const {
        return _mm_unpacklo_epi64(Two(samples), Two(samples + 2));
    }
    Z3D_INLINE Integers Eight(const float* samples) const {
        return _mm_max_epi16(_mm_packs_epi32(Four(samples), Four(samples + 4)), Zeroes());
    }
#endif

    Doubles slope_, offset_;
};

// The bytes of three registers in turn: a0 b0 c0 a1 b1 c1 ...
#if defined(__AVX2__)
// Within each half, byte i of the k-th 16 bytes of the result is byte (16 k + i) / 3 of one of the three. One shuffle
// per register takes the bytes to their places i, for all k at once, as every k takes other bytes.
Z3D_INLINE void StoreInterleaved(__m256i a, __m256i b, __m256i c, std::uint8_t* to) {
    const auto both = [](__m128i half) { return _mm256_broadcastsi128_si256(half); };
    a = _mm256_shuffle_epi8(a, both(_mm_setr_epi8(0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10, 5)));
    b = _mm256_shuffle_epi8(b, both(_mm_setr_epi8(5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10)));
    c = _mm256_shuffle_epi8(c, both(_mm_setr_epi8(10, 5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15)));
    const __m256i second = both(_mm_setr_epi8(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0));
    const __m256i third = both(_mm_setr_epi8(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0));
    const auto turns = [&](__m256i x, __m256i y, __m256i z) {
        return _mm256_blendv_epi8(_mm256_blendv_epi8(x, y, second), z, third);
    };
    const __m256i first16 = turns(a, b, c);
    const __m256i next16 = turns(b, c, a);
    const __m256i last16 = turns(c, a, b);
    Store(to, _mm256_permute2x128_si256(first16, next16, 0x20));
    Store(to + 32, _mm256_permute2x128_si256(last16, first16, 0x30));
    Store(to + 64, _mm256_permute2x128_si256(next16, last16, 0x31));
}
#else
Z3D_INLINE void StoreInterleaved(__m128i a, __m128i b, __m128i c, std::uint8_t* to) {
    StoreInterleaved8({a, b, c}, to);
}
#endif

// Running extremes of the sums, in 16-bit lanes.
class Sums {
public:
    Z3D_INLINE void Take(Integers words) {
        min_ = Z3D_MM(min_epi16)(min_, words);
        max_ = Z3D_MM(max_epi16)(max_, words);
    }

    SumRange Range() const {
        std::int16_t min[kRegisterBytes / 2];
        std::int16_t max[kRegisterBytes / 2];
        Store(min, min_);
        Store(max, max_);
        SumRange range;
        for (std::size_t i = 0; i < kRegisterBytes / 2; ++i) {
            range.min = std::min<std::int32_t>(range.min, min[i]);
            range.max = std::max<std::int32_t>(range.max, max[i]);
        }
        return range;
    }

private:
    Integers min_ = Z3D_MM(set1_epi16)(765);
    Integers max_ = Zeroes();
};

// Not inlined: the loop and the last block share it, and 1 KB of code with it.
template <class Map>
[[gnu::noinline]] void ComposeBlocks(const Map& map,
                                     const ChannelSamples<typename Map::Sample> (&channels)[3],
                                     std::uint8_t* to, std::size_t blocks, Sums& total) {
    const auto* a = channels[0].first;
    const auto* b = channels[1].first;
    const auto* c = channels[2].first;
    Sums sums = total;
    for (; blocks != 0; --blocks) {
        const Words first = map(a);
        const Words second = map(b);
        const Words third = map(c);
        sums.Take(Z3D_MM(add_epi16)(Z3D_MM(add_epi16)(first.low, second.low), third.low));
        sums.Take(Z3D_MM(add_epi16)(Z3D_MM(add_epi16)(first.high, second.high), third.high));
        StoreInterleaved(Z3D_MM(packus_epi16)(first.low, first.high),
                         Z3D_MM(packus_epi16)(second.low, second.high),
                         Z3D_MM(packus_epi16)(third.low, third.high), to);
        a += kBlock * channels[0].advance;
        b += kBlock * channels[1].advance;
        c += kBlock * channels[2].advance;
        to += 3 * kBlock;
    }
    total = sums;
}

template <class Map>
SumRange Compose(const Map& map, const ChannelSamples<typename Map::Sample> (&channels)[3], std::uint8_t* to,
                 std::size_t count) {
    Sums sums;
    ComposeBlocks(map, channels, to, count / kBlock, sums);

    // What is left is filled up with its first pixel, which counts anyway.
    const std::size_t rest = count % kBlock;
    if (rest != 0) {
        typename Map::Sample samples[3][kBlock];
        std::uint8_t pixels[3 * kBlock];
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const auto [first, advance] = channels[channel];
            for (std::size_t i = 0; i < kBlock; ++i)
                samples[channel][i] = first[(count - rest + (i < rest ? i : 0)) * advance];
        }
        ComposeBlocks(map, {{samples[0], 0}, {samples[1], 0}, {samples[2], 0}}, pixels, 1, sums);
        std::memcpy(to + 3 * (count - rest), pixels, 3 * rest);
    }
    return sums.Range();
}

} // namespace

SumRange ComposeBytes(const ChannelSamples<std::uint8_t> (&channels)[3], std::uint8_t* pixels,
                      std::size_t count, ByteRange range) {
    return Compose(ByteMap(range), channels, pixels, count);
}

SumRange ComposeFloats(const ChannelSamples<float> (&channels)[3], std::uint8_t* pixels, std::size_t count,
                       FloatScale scale) {
    return Compose(FloatMap(scale), channels, pixels, count);
}

} // namespace z3d::primitives::Z3D_ISA
