#include "primitives/Planes.h"

#include "primitives/Lanes.h"
#include "primitives/Region.h"

#include <cstddef>
#include <cstring>

namespace z3d::primitives {
namespace {

// Three registers whose elements are to be taken in turn: a0 b0 c0 a1 b1 c1 ...
struct Triple {
    __m128i a, b, c;
};

// Pairs up neighbours of the wanted order, so that what remains to be interleaved is elements twice as wide.
// With each register cut into pairs of elements (even, odd), the wanted order is
//   a.even b.even | c.even a.odd | b.odd c.odd | ...
// and these three kinds of pairs are the new a, b and c; the even element is the lower half of a pair.
Triple PairBytes(const Triple& t) {
    const __m128i even = _mm_set1_epi16(0x00FF);
    return {_mm_or_si128(_mm_and_si128(t.a, even), _mm_slli_epi16(t.b, 8)),
            _mm_or_si128(_mm_and_si128(t.c, even), _mm_andnot_si128(even, t.a)),
            _mm_or_si128(_mm_srli_epi16(t.b, 8), _mm_andnot_si128(even, t.c))};
}

Triple PairWords(const Triple& t) {
    const __m128i even = _mm_set1_epi32(0x0000FFFF);
    return {_mm_or_si128(_mm_and_si128(t.a, even), _mm_slli_epi32(t.b, 16)),
            _mm_or_si128(_mm_and_si128(t.c, even), _mm_andnot_si128(even, t.a)),
            _mm_or_si128(_mm_srli_epi32(t.b, 16), _mm_andnot_si128(even, t.c))};
}

// The last step, for 32-bit elements: a0 b0 c0 a1 | b1 c1 a2 b2 | c2 a3 b3 c3. Shuffles only move bits, so
// any element survives, a signalling NaN too.
void StoreInterleaved32(const Triple& t, std::uint8_t* to) {
    const __m128 a = _mm_castsi128_ps(t.a);
    const __m128 b = _mm_castsi128_ps(t.b);
    const __m128 c = _mm_castsi128_ps(t.c);
    const __m128 ab01 = _mm_unpacklo_ps(a, b);
    const __m128 ab23 = _mm_unpackhi_ps(a, b);
    const __m128 c0a1 = _mm_shuffle_ps(c, ab01, _MM_SHUFFLE(2, 2, 0, 0));
    const __m128 b1c1 = _mm_shuffle_ps(ab01, c, _MM_SHUFFLE(1, 1, 3, 3));
    const __m128 c2a3 = _mm_shuffle_ps(c, ab23, _MM_SHUFFLE(2, 2, 2, 2));
    const __m128 b3c3 = _mm_shuffle_ps(ab23, c, _MM_SHUFFLE(3, 3, 3, 3));
    StoreFloats(to, _mm_shuffle_ps(ab01, c0a1, _MM_SHUFFLE(2, 0, 1, 0)));
    StoreFloats(to + 16, _mm_shuffle_ps(b1c1, ab23, _MM_SHUFFLE(1, 0, 2, 0)));
    StoreFloats(to + 32, _mm_shuffle_ps(c2a3, b3c3, _MM_SHUFFLE(2, 0, 2, 0)));
}

struct Bytes {
    static constexpr std::size_t kSampleBytes = 1;
    [[gnu::always_inline]] static void Interleave(const Triple& t, std::uint8_t* to) {
        StoreInterleaved32(PairWords(PairBytes(t)), to);
    }
};

struct Floats {
    static constexpr std::size_t kSampleBytes = 4;
    [[gnu::always_inline]] static void Interleave(const Triple& t, std::uint8_t* to) {
        StoreInterleaved32(t, to);
    }
};

template <class Sample>
void InterleaveRow(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* c, std::uint8_t* to,
                   std::size_t bytesPerPlane) {
    std::size_t done = 0;
    for (; bytesPerPlane - done >= 16; done += 16, to += 48)
        Sample::Interleave({LoadBytes(a + done), LoadBytes(b + done), LoadBytes(c + done)}, to);
    const std::size_t rest = bytesPerPlane - done;
    if (rest == 0) return;

    // The row's end goes through scratch, so that no byte beyond the row is touched.
    std::uint8_t in[3][16] = {};
    std::uint8_t out[48];
    std::memcpy(in[0], a + done, rest);
    std::memcpy(in[1], b + done, rest);
    std::memcpy(in[2], c + done, rest);
    Sample::Interleave({LoadBytes(in[0]), LoadBytes(in[1]), LoadBytes(in[2])}, out);
    std::memcpy(to, out, 3 * rest);
}

template <class Sample>
Status CopyPlanes(const void* const (&planes)[3], std::int32_t sourceStep, void* destination,
                  std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    const Status status = CheckRegion(width, height, sourceStep, destinationStep,
                                      3 * static_cast<std::uint32_t>(Sample::kSampleBytes));
    if (status != StatusNoError) return status;

    // Rows that follow each other without a gap are one long row.
    std::size_t planeBytes = static_cast<std::size_t>(width) * Sample::kSampleBytes;
    const std::uint64_t allBytes =
        static_cast<std::uint64_t>(planeBytes) * static_cast<std::uint64_t>(height);
    if (static_cast<std::size_t>(sourceStep) == planeBytes
        && static_cast<std::size_t>(destinationStep) == 3 * planeBytes && allBytes <= UINT32_MAX) {
        planeBytes = static_cast<std::size_t>(allBytes);
        height = 1;
    }
    for (std::int32_t y = 0; y < height; ++y)
        InterleaveRow<Sample>(RowAt(planes[0], sourceStep, y), RowAt(planes[1], sourceStep, y),
                              RowAt(planes[2], sourceStep, y), RowAt(destination, destinationStep, y),
                              planeBytes);
    return StatusNoError;
}

template <class T>
bool AnyNull(const T* const* planes, const T* destination) {
    return planes == nullptr || destination == nullptr || planes[0] == nullptr || planes[1] == nullptr
           || planes[2] == nullptr;
}

} // namespace

Status CopyPlanes8uP3C3(const std::uint8_t* const* planes, std::int32_t sourceStep, std::uint8_t* destination,
                        std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    if (AnyNull(planes, destination)) return StatusNullPointer;
    return CopyPlanes<Bytes>({planes[0], planes[1], planes[2]}, sourceStep, destination, destinationStep,
                             width, height);
}

Status CopyPlanes32fP3C3(const float* const* planes, std::int32_t sourceStep, float* destination,
                         std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    if (AnyNull(planes, destination)) return StatusNullPointer;
    return CopyPlanes<Floats>({planes[0], planes[1], planes[2]}, sourceStep, destination, destinationStep,
                              width, height);
}

} // namespace z3d::primitives
