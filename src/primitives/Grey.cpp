#include "primitives/Grey.h"

#include "primitives/Blocks.h"
#include "primitives/Lanes.h"

namespace z3d::primitives {
namespace {

// A weight's low 32 bits: those of a sum that reach the stored byte depend on nothing above them, so that
// sums may wrap. A float too large for 64 bits is a multiple of 2^32 and gives 0; what is not finite gives 0
// too.
std::uint32_t IntegerWeight(float weight) {
    const double scaled = 4096.0 * static_cast<double>(weight) + 0.5;
    if (!(scaled > -0x1p63 && scaled < 0x1p63)) return 0;
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(scaled));
}

// Any weights, one pixel at a time.
struct WideGreyKernel {
    static constexpr std::size_t kSourceBytes = 3;
    static constexpr std::size_t kDestinationBytes = 1;
    std::uint32_t weight[3];

    void operator()(const std::uint8_t* source, std::uint8_t* destination) const {
        for (std::size_t i = 0; i < kBlock; ++i, source += 3)
            destination[i] = static_cast<std::uint8_t>(
                (weight[0] * source[0] + weight[1] * source[1] + weight[2] * source[2]) >> 12);
    }
};

bool FitsSixteenBits(std::uint32_t weight) {
    const std::int32_t value = static_cast<std::int32_t>(weight);
    return value >= INT16_MIN && value <= INT16_MAX;
}

// Weights of 16 bits with a sign, for the multiplication of pairs: no sum exceeds 32 bits.
struct GreyKernel {
    static constexpr std::size_t kSourceBytes = 3;
    static constexpr std::size_t kDestinationBytes = 1;
    __m128i firstAndThird, second;

    explicit GreyKernel(const std::uint32_t (&weight)[3])
        : firstAndThird(_mm_set1_epi32(static_cast<std::int32_t>((weight[2] << 16) | (weight[0] & 0xFFFF)))),
          second(_mm_set1_epi32(static_cast<std::int32_t>(weight[1] & 0xFFFF))) {}

    // Four pixels, the first one at byte kSkip of the register, as four 32-bit greys below 256.
    template <int kSkip>
    __m128i Four(__m128i bytes) const {
        // One pixel to each 32-bit lane: s0, s1, s2 and a stray byte.
        const __m128i pixels01 =
            _mm_unpacklo_epi32(_mm_srli_si128(bytes, kSkip), _mm_srli_si128(bytes, kSkip + 3));
        const __m128i pixels23 =
            _mm_unpacklo_epi32(_mm_srli_si128(bytes, kSkip + 6), _mm_srli_si128(bytes, kSkip + 9));
        const __m128i pixels = _mm_unpacklo_epi64(pixels01, pixels23);

        // The stray byte meets the weight 0.
        const __m128i even = _mm_and_si128(pixels, _mm_set1_epi16(0x00FF));
        const __m128i odd = _mm_srli_epi16(pixels, 8);
        const __m128i sum = _mm_add_epi32(_mm_madd_epi16(even, firstAndThird), _mm_madd_epi16(odd, second));
        return _mm_and_si128(_mm_srli_epi32(sum, 12), _mm_set1_epi32(0xFF));
    }

    [[gnu::always_inline]] void operator()(const std::uint8_t* source, std::uint8_t* destination) const {
        // The last four pixels are taken from the block's last 16 bytes, not to read beyond it.
        const __m128i a = Four<0>(LoadBytes(source));
        const __m128i b = Four<0>(LoadBytes(source + 12));
        const __m128i c = Four<0>(LoadBytes(source + 24));
        const __m128i d = Four<4>(LoadBytes(source + 32));
        StoreBytes(destination, SaturateToBytes(a, b, c, d));
    }
};

} // namespace

Status ColorToGray8uC3C1(const std::uint8_t* source, std::int32_t sourceStep, std::uint8_t* destination,
                         std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                         const float* weights) {
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    const Status status = CheckRegion(width, height, sourceStep, destinationStep, 3);
    if (status != StatusNoError) return status;

    std::uint32_t integers[3] = {1225, 2404, 467};
    if (weights != nullptr)
        for (int i = 0; i < 3; ++i)
            integers[i] = IntegerWeight(weights[i]);

    const std::size_t pixels = static_cast<std::size_t>(width);
    if (FitsSixteenBits(integers[0]) && FitsSixteenBits(integers[1]) && FitsSixteenBits(integers[2]))
        MapRegion(GreyKernel(integers), source, sourceStep, destination, destinationStep, pixels, height);
    else
        MapRegion(WideGreyKernel{{integers[0], integers[1], integers[2]}}, source, sourceStep, destination,
                  destinationStep, pixels, height);
    return StatusNoError;
}

} // namespace z3d::primitives
