#include "volume/ValueRange.h"

#include <algorithm>
#include <emmintrin.h>

namespace z3d::volume {
namespace {

constexpr std::size_t kBytesPerChunk = 16384;
constexpr std::size_t kFloatsPerChunk = 4096;

struct ByteExtremes {
    std::uint8_t max;
    std::uint8_t min;
};

ByteExtremes ExtremesOf(const std::uint8_t* samples, std::size_t count) {
    __m128i max = _mm_setzero_si128();
    __m128i min = _mm_set1_epi8(-1);
    const std::size_t whole = count - count % 16;
    for (std::size_t i = 0; i < whole; i += 16) {
        const __m128i values = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + i));
        max = _mm_max_epu8(max, values);
        min = _mm_min_epu8(min, values);
    }

    alignas(16) std::uint8_t maxOf[16];
    alignas(16) std::uint8_t minOf[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(maxOf), max);
    _mm_store_si128(reinterpret_cast<__m128i*>(minOf), min);
    ByteExtremes extremes = {*std::max_element(maxOf, maxOf + 16), *std::min_element(minOf, minOf + 16)};
    for (std::size_t i = whole; i < count; ++i) {
        extremes.max = std::max(extremes.max, samples[i]);
        extremes.min = std::min(extremes.min, samples[i]);
    }
    return extremes;
}

// The four lanes and the samples of the end, merged as further values.
void WidenByLanes(ValueRange& range, __m128 max, __m128 min, const float* rest, std::size_t restCount) {
    float maxOf[4];
    float minOf[4];
    _mm_storeu_ps(maxOf, max);
    _mm_storeu_ps(minOf, min);
    for (std::size_t lane = 0; lane < 4; ++lane)
        range.Widen({maxOf[lane], minOf[lane]});
    for (std::size_t i = 0; i < restCount; ++i)
        range.Widen(rest[i]);
}

// MAXPS and MINPS give their second operand when the first is not greater (smaller) or either is a NaN: with
// the sample first and the running value second, that is the rule of Widen in each lane.
void WidenByChunk(ValueRange& range, const float* samples, std::size_t count) {
    __m128 max0 = _mm_set1_ps(range.max);
    __m128 min0 = _mm_set1_ps(range.min);
    __m128 max1 = max0;
    __m128 min1 = min0;
    const std::size_t whole = count - count % 8;
    for (std::size_t i = 0; i < whole; i += 8) {
        const __m128 values0 = _mm_loadu_ps(samples + i);
        const __m128 values1 = _mm_loadu_ps(samples + i + 4);
        max0 = _mm_max_ps(values0, max0);
        min0 = _mm_min_ps(values0, min0);
        max1 = _mm_max_ps(values1, max1);
        min1 = _mm_min_ps(values1, min1);
    }
    WidenByLanes(range, _mm_max_ps(max1, max0), _mm_min_ps(min1, min0), samples + whole, count - whole);
}

// Equal values have equal bits, except zeros. An extreme that became zero in these samples is the first zero
// among them, whichever lane saw it.
float FirstZero(const float* samples) {
    while (*samples != 0.0f)
        ++samples;
    return *samples;
}

} // namespace

void WidenByBytes(ValueRange& range, const std::uint8_t* samples, std::size_t count) {
    for (std::size_t first = 0; first < count; first += kBytesPerChunk) {
        if (range.min <= 0.0f && range.max >= 255.0f) return; // no byte can widen it
        const ByteExtremes extremes = ExtremesOf(samples + first, std::min(kBytesPerChunk, count - first));
        range.Widen({static_cast<float>(extremes.max), static_cast<float>(extremes.min)});
    }
}

void WidenByFloats(ValueRange& range, const float* samples, std::size_t count) {
    for (std::size_t first = 0; first < count; first += kFloatsPerChunk) {
        const ValueRange before = range;
        const float* chunk = samples + first;
        WidenByChunk(range, chunk, std::min(kFloatsPerChunk, count - first));
        if (range.max == 0.0f && before.max != 0.0f) range.max = FirstZero(chunk);
        if (range.min == 0.0f && before.min != 0.0f) range.min = FirstZero(chunk);
    }
}

void WidenByPixels(ValueRange& range, const frame::LockedImage& image) {
    if (image.BytesPerPixel() == 4) {
        WidenByFloats(range, image.Floats(), image.PixelCount());
    } else {
        WidenByBytes(range, image.Bytes(), image.ByteCount());
    }
}

bool WidenBySlice(ValueRange& range, Image2D* slice) {
    const frame::LockedImage locked(slice);
    if (!locked) return false;
    WidenByPixels(range, locked);
    return true;
}

} // namespace z3d::volume
