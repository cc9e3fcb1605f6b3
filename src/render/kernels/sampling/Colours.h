// The colours of a stretch as they are fetched: a word each, of whose bytes the first three count. What can be done
// with words is done before their bytes are sorted into channels.
#pragma once

#include "render/StretchIndexes.h"
#include "render/kernels/vector/Vector.h"

namespace z3d::render::Z3D_ISA {

struct alignas(64) ColourWords {
    std::uint32_t sample[kSamples][kRays];
};

constexpr int kWordParts = kRays / kFloatLanes; // vectors that sixteen words fill

// Takes sixteen words apart.
Z3D_INLINE RgbVoxels SplitWords(const std::uint32_t* words) {
#if Z3D_VECTOR_BYTES == 64
    // The bytes of four words by channel, then the channels of all.
    const __m512i byChannel =
        _mm512_broadcast_i32x4(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
    const __m512i fours = _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    const __m512i sorted =
        _mm512_permutexvar_epi32(fours, _mm512_shuffle_epi8(_mm512_loadu_si512(words), byChannel));
    return {{ToBytes(_mm512_castsi512_si128(sorted)), ToBytes(_mm512_extracti32x4_epi32(sorted, 1)),
             ToBytes(_mm512_extracti32x4_epi32(sorted, 2))}};
#else
    // 64 bytes, byte-interleaved four times. Each time moves byte i to 2i mod 63, so four times move byte c of word r
    // from 4r + c to 16c + r.
    const auto* quads = reinterpret_cast<const __m128i*>(words);
    __m128i a = _mm_loadu_si128(quads);
    __m128i b = _mm_loadu_si128(quads + 1);
    __m128i c = _mm_loadu_si128(quads + 2);
    __m128i d = _mm_loadu_si128(quads + 3);
#pragma GCC unroll 4
    for (int interleave = 0; interleave < 4; ++interleave) {
        const __m128i first = _mm_unpacklo_epi8(a, c);
        const __m128i second = _mm_unpackhi_epi8(a, c);
        c = _mm_unpacklo_epi8(b, d);
        d = _mm_unpackhi_epi8(b, d);
        a = first;
        b = second;
    }
    return {{ToBytes(a), ToBytes(b), ToBytes(c)}};
#endif
}

// Words below 2^15 as 16-bit numbers.
Z3D_INLINE Sums NarrowWords(const Uints (&words)[kWordParts]) {
#if Z3D_VECTOR_BYTES == 64
    const __m256i narrow = _mm512_cvtepi32_epi16(reinterpret_cast<__m512i>(words[0]));
    return {_mm256_castsi256_si128(narrow), _mm256_extracti128_si256(narrow, 1)};
#else
    const auto* quads = reinterpret_cast<const __m128i*>(words);
    return {_mm_packs_epi32(quads[0], quads[1]), _mm_packs_epi32(quads[2], quads[3])};
#endif
}

// Red and blue, or green and what follows blue, as two 16-bit numbers per word.
Z3D_INLINE Uints RedAndBlue(Uints words) { return words & 0x00FF00FFu; }
Z3D_INLINE Uints GreenAndRest(Uints words) { return words >> 8 & 0x00FF00FFu; }

// The sum of the two 16-bit numbers of each word, which are below 2^15.
Z3D_INLINE Uints AddHalves(Uints words) {
    constexpr std::int32_t kOneEach = 0x10001;
    return reinterpret_cast<Uints>(MultiplyHalves(reinterpret_cast<Ints>(words), kOneEach - Ints{}));
}

// The sums of the channels of sixteen words.
Z3D_INLINE Sums SumsOfWords(const std::uint32_t* words) {
    Uints sums[kWordParts];
#pragma GCC unroll 4
    for (int part = 0; part < kWordParts; ++part) {
        const Uints word = LoadUints(words + part * kFloatLanes);
        const Uints pairs = RedAndBlue(word) + (word >> 8 & 0xFFu);
        sums[part] = AddHalves(pairs);
    }
    return NarrowWords(sums);
}

// A mask of bytes as masks of words.
struct WordMask {
    Uints part[kWordParts];

    Z3D_INLINE explicit WordMask(Bytes mask) {
#if Z3D_VECTOR_BYTES == 64
        part[0] = reinterpret_cast<Uints>(_mm512_movm_epi32(_mm_movepi8_mask(Raw(mask))));
#elif Z3D_VECTOR_BYTES == 32
        part[0] = reinterpret_cast<Uints>(_mm256_cvtepi8_epi32(Raw(mask)));
        part[1] = reinterpret_cast<Uints>(_mm256_cvtepi8_epi32(_mm_unpackhi_epi64(Raw(mask), Raw(mask))));
#else
        const Sums wide = WidenMask(mask);
        part[0] = reinterpret_cast<Uints>(_mm_unpacklo_epi16(wide.low, wide.low));
        part[1] = reinterpret_cast<Uints>(_mm_unpackhi_epi16(wide.low, wide.low));
        part[2] = reinterpret_cast<Uints>(_mm_unpacklo_epi16(wide.high, wide.high));
        part[3] = reinterpret_cast<Uints>(_mm_unpackhi_epi16(wide.high, wide.high));
#endif
    }
};

Z3D_INLINE Uints LargerBytes(Uints a, Uints b) {
#if Z3D_VECTOR_BYTES == 64
    return reinterpret_cast<Uints>(
        _mm512_max_epu8(reinterpret_cast<__m512i>(a), reinterpret_cast<__m512i>(b)));
#elif Z3D_VECTOR_BYTES == 32
    return reinterpret_cast<Uints>(
        _mm256_max_epu8(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
#else
    return reinterpret_cast<Uints>(_mm_max_epu8(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#endif
}

// The largest ranks among colours, channel by channel; 0 where none has counted.
class ColourRanks {
public:
    Z3D_INLINE void Add(const std::uint32_t* words, Bytes flip, Bytes accepted) {
        const WordMask mask(accepted);
        const WordMask flips(flip); // all bytes are the same
#pragma GCC unroll 4
        for (int part = 0; part < kWordParts; ++part) {
            const Uints rank = (LoadUints(words + part * kFloatLanes) ^ flips.part[part]) & mask.part[part];
            largest_[part] = LargerBytes(largest_[part], rank);
        }
    }
    Z3D_INLINE RgbVoxels Ranks() const {
        return SplitWords(reinterpret_cast<const std::uint32_t*>(largest_));
    }

private:
    Uints largest_[kWordParts] = {};
};

// Sums of up to 128 colours, channel by channel.
class ColourSums {
public:
    Z3D_INLINE void Add(const std::uint32_t* words, Bytes accepted) {
        const WordMask mask(accepted);
#pragma GCC unroll 4
        for (int part = 0; part < kWordParts; ++part) {
            const Uints word = LoadUints(words + part * kFloatLanes) & mask.part[part];
            redAndBlue_[part] += RedAndBlue(word);
            greenAndRest_[part] += GreenAndRest(word);
        }
    }
    Z3D_INLINE void Get(Sums (&sums)[3]) const {
        Uints channel[3][kWordParts];
#pragma GCC unroll 4
        for (int part = 0; part < kWordParts; ++part) {
            channel[0][part] = redAndBlue_[part] & 0xFFFFu;
            channel[1][part] = greenAndRest_[part] & 0xFFFFu;
            channel[2][part] = redAndBlue_[part] >> 16;
        }
#pragma GCC unroll 3
        for (int c = 0; c < 3; ++c)
            sums[c] = NarrowWords(channel[c]);
    }

private:
    Uints redAndBlue_[kWordParts] = {};
    Uints greenAndRest_[kWordParts] = {};
};

} // namespace z3d::render::Z3D_ISA
