#include "primitives/ResizePasses.h"

#include "primitives/Lanes.h"

#include <cstring>

namespace z3d::primitives {
namespace {

constexpr std::int32_t kOne = 16384; // the weight 1

// A fraction slightly below 0 truncates to 0.
std::int32_t IntegerWeight(double fraction) { return static_cast<std::int32_t>(fraction * kOne + 0.0000001); }

// A pixel and its right neighbour, in one load.
std::int16_t PairAt(const std::uint8_t* row, std::int32_t left) {
    std::int16_t pair;
    std::memcpy(&pair, row + left, sizeof pair);
    return pair;
}

__m128d FloatPairAt(const std::uint8_t* row, std::int32_t left) {
    return LoadDoubles(row + sizeof(float) * static_cast<std::size_t>(left));
}

// Four columns: s[i] * w0 + s[i + 1] * w1 from 16-bit pixels, rounded to units of 1/64.
__m128i BlendPairs(__m128i pairs, const BytePasses::ColumnWeight* weights) {
    const __m128i sum = _mm_madd_epi16(pairs, _mm_loadu_si128(reinterpret_cast<const __m128i*>(weights)));
    return _mm_srai_epi32(_mm_add_epi32(sum, _mm_set1_epi32(128)), 8);
}

// Two columns: a + (b - a) * f, rounded to floats.
__m128d BlendFloatPairs(__m128d pair0, __m128d pair1, __m128d fractions) {
    const __m128d a = _mm_unpacklo_pd(pair0, pair1);
    const __m128d b = _mm_unpackhi_pd(pair0, pair1);
    const __m128d blended = _mm_add_pd(a, _mm_mul_pd(_mm_sub_pd(b, a), fractions));
    return _mm_cvtps_pd(_mm_cvtpd_ps(blended));
}

} // namespace

BytePasses::ColumnWeight BytePasses::WeightOfColumn(double fraction) {
    const std::int32_t right = IntegerWeight(fraction);
    return {static_cast<std::int16_t>(kOne - right), static_cast<std::int16_t>(right)};
}

BytePasses::RowWeight BytePasses::WeightOfRow(double fraction) { return IntegerWeight(fraction); }

ByteColumnGroup BytePasses::GroupOf(std::int32_t first,
                                    const std::uint8_t (&offsets)[ByteColumnGroup::kColumns]) {
    constexpr std::uint8_t kZero = 0x80;
    ByteColumnGroup group;
    group.first = first;
    std::uint8_t* shuffle = group.shuffle;
    for (const std::uint8_t offset : offsets) {
        *shuffle++ = offset;
        *shuffle++ = kZero;
        *shuffle++ = static_cast<std::uint8_t>(offset + 1);
        *shuffle++ = kZero;
    }
    return group;
}

FloatColumnGroup FloatPasses::GroupOf(std::int32_t first,
                                      const std::uint8_t (&offsets)[FloatColumnGroup::kColumns]) {
    FloatColumnGroup group;
    group.first = first;
    for (int column = 0; column < FloatColumnGroup::kColumns; ++column) {
        group.permutation[column] = offsets[column];
        group.permutation[FloatColumnGroup::kColumns + column] = offsets[column] + 1;
    }
    return group;
}

void BytePasses::Horizontal(const std::uint8_t* row, const std::int32_t* left, const ColumnWeight* weights,
                            Intermediate* to, std::size_t count) {
    const __m128i zero = _mm_setzero_si128();
    for (std::size_t x = 0; x < count; x += 8, left += 8, weights += 8, to += 8) {
        __m128i pairs = _mm_cvtsi32_si128(PairAt(row, left[0]));
        pairs = _mm_insert_epi16(pairs, PairAt(row, left[1]), 1);
        pairs = _mm_insert_epi16(pairs, PairAt(row, left[2]), 2);
        pairs = _mm_insert_epi16(pairs, PairAt(row, left[3]), 3);
        pairs = _mm_insert_epi16(pairs, PairAt(row, left[4]), 4);
        pairs = _mm_insert_epi16(pairs, PairAt(row, left[5]), 5);
        pairs = _mm_insert_epi16(pairs, PairAt(row, left[6]), 6);
        pairs = _mm_insert_epi16(pairs, PairAt(row, left[7]), 7);
        const __m128i low = BlendPairs(_mm_unpacklo_epi8(pairs, zero), weights);
        const __m128i high = BlendPairs(_mm_unpackhi_epi8(pairs, zero), weights + 4);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_packs_epi32(low, high));
    }
}

void FloatPasses::Horizontal(const std::uint8_t* row, const std::int32_t* left, const ColumnWeight* weights,
                             Intermediate* to, std::size_t count) {
    for (std::size_t x = 0; x < count; x += 2, left += 2, weights += 2, to += 2) {
        const __m128d pair0 = FloatPairAt(row, left[0]);
        const __m128d pair1 = FloatPairAt(row, left[1]);
        _mm_storeu_pd(to, BlendFloatPairs(pair0, pair1, _mm_loadu_pd(weights)));
    }
}

} // namespace z3d::primitives
