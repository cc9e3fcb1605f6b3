// Sixteen floats, one per ray, and how they become pixels. 128-bit operations do on every instruction set.
#pragma once

#include "render/voxels/Bytes.h"

#include <cstddef>

namespace z3d::render {

struct RayFloats {
    __m128 quad[4];
};

// What sixteen rays give their pixels: three equal values in grey.
template <int kChannels>
struct RayPixels {
    RayFloats channel[kChannels];
};

// Where the pixels of sixteen rays go: four times four neighbours, the fours `quad` floats apart.
struct PixelTarget {
    float* first;
    std::ptrdiff_t quad;
};
constexpr std::ptrdiff_t kQuadsInARow = 12; // sixteen neighbours

Z3D_INLINE RayFloats LoadRayFloats(const float* from) {
    RayFloats floats;
    __builtin_memcpy(&floats, from, sizeof floats);
    return floats;
}

// Numbers without sign.
Z3D_INLINE RayFloats ToRayFloats(const Sums& numbers) {
    const __m128i zero = _mm_setzero_si128();
    return {{_mm_cvtepi32_ps(_mm_unpacklo_epi16(numbers.low, zero)),
             _mm_cvtepi32_ps(_mm_unpackhi_epi16(numbers.low, zero)),
             _mm_cvtepi32_ps(_mm_unpacklo_epi16(numbers.high, zero)),
             _mm_cvtepi32_ps(_mm_unpackhi_epi16(numbers.high, zero))}};
}
Z3D_INLINE RayFloats ToRayFloats(Bytes bytes) { return ToRayFloats(Widen(bytes)); }

// The floats of the rays of a mask, and `otherwise` for the others.
Z3D_INLINE RayFloats Where(const Sums& mask, const RayFloats& floats, float otherwise) {
    const __m128i wide[4] = {_mm_unpacklo_epi16(mask.low, mask.low), _mm_unpackhi_epi16(mask.low, mask.low),
                             _mm_unpacklo_epi16(mask.high, mask.high),
                             _mm_unpackhi_epi16(mask.high, mask.high)};
    const __m128 other = _mm_set1_ps(otherwise);
    RayFloats chosen;
#pragma GCC unroll 4
    for (int quad = 0; quad < 4; ++quad) {
        const __m128 set = _mm_castsi128_ps(wide[quad]);
        chosen.quad[quad] = _mm_or_ps(_mm_and_ps(set, floats.quad[quad]), _mm_andnot_ps(set, other));
    }
    return chosen;
}
Z3D_INLINE RayFloats Where(Bytes mask, const RayFloats& floats, float otherwise) {
    return Where(WidenMask(mask), floats, otherwise);
}

// Four neighbouring pixels: the channels of each become neighbours.
Z3D_INLINE void StoreQuad(float* to, __m128 grey) {
    _mm_storeu_ps(to, _mm_shuffle_ps(grey, grey, _MM_SHUFFLE(1, 0, 0, 0)));
    _mm_storeu_ps(to + 4, _mm_shuffle_ps(grey, grey, _MM_SHUFFLE(2, 2, 1, 1)));
    _mm_storeu_ps(to + 8, _mm_shuffle_ps(grey, grey, _MM_SHUFFLE(3, 3, 3, 2)));
}
Z3D_INLINE void StoreQuad(float* to, __m128 red, __m128 green, __m128 blue) {
    const __m128 redGreen = _mm_unpacklo_ps(red, green);                                  // r0 g0 r1 g1
    const __m128 greenBlue = _mm_shuffle_ps(green, blue, _MM_SHUFFLE(2, 1, 2, 1));        // g1 g2 b1 b2
    const __m128 redGreenHigh = _mm_unpackhi_ps(red, green);                              // r2 g2 r3 g3
    const __m128 blueRed = _mm_shuffle_ps(blue, red, _MM_SHUFFLE(1, 1, 0, 0));            // b0 b0 r1 r1
    const __m128 blueHigh = _mm_shuffle_ps(blue, redGreenHigh, _MM_SHUFFLE(2, 2, 2, 2));  // b2 b2 r3 r3
    _mm_storeu_ps(to, _mm_shuffle_ps(redGreen, blueRed, _MM_SHUFFLE(2, 0, 1, 0)));        // r0 g0 b0 r1
    const __m128 middle = _mm_shuffle_ps(greenBlue, greenBlue, _MM_SHUFFLE(1, 1, 2, 0));  // g1 b1 g2 g2
    _mm_storeu_ps(to + 4, _mm_shuffle_ps(middle, redGreenHigh, _MM_SHUFFLE(1, 0, 1, 0))); // g1 b1 r2 g2
    const __m128 last = _mm_shuffle_ps(redGreenHigh, blue, _MM_SHUFFLE(3, 3, 3, 3));      // g3 g3 b3 b3
    _mm_storeu_ps(to + 8, _mm_shuffle_ps(blueHigh, last, _MM_SHUFFLE(2, 0, 2, 0)));       // b2 r3 g3 b3
}

Z3D_INLINE void StorePixels(const RayPixels<1>& pixels, const PixelTarget& target) {
#pragma GCC unroll 4
    for (int quad = 0; quad < 4; ++quad)
        StoreQuad(target.first + quad * target.quad, pixels.channel[0].quad[quad]);
}
Z3D_INLINE void StorePixels(const RayPixels<3>& pixels, const PixelTarget& target) {
#pragma GCC unroll 1
    for (int quad = 0; quad < 4; ++quad) {
        StoreQuad(target.first + quad * target.quad, pixels.channel[0].quad[quad],
                  pixels.channel[1].quad[quad], pixels.channel[2].quad[quad]);
    }
}

} // namespace z3d::render
