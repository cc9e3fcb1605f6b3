#include "primitives/Range.h"

#include "primitives/Lanes.h"
#include "primitives/Region.h"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

namespace z3d::primitives {
namespace {

// Sixteen running pairs of extremes of the bytes seen so far.
struct RowExtremes {
    __m128i smallest, largest;

    explicit RowExtremes(std::uint8_t first)
        : smallest(_mm_set1_epi8(static_cast<char>(first))), largest(smallest) {}

    void Take(__m128i bytes) {
        smallest = _mm_min_epu8(smallest, bytes);
        largest = _mm_max_epu8(largest, bytes);
    }

    void TakeRow(const std::uint8_t* row, std::size_t width, std::uint8_t first) {
        std::size_t x = 0;
        for (; width - x >= 16; x += 16)
            Take(LoadBytes(row + x));
        if (x == width) return;
        // A row's end is filled up with a pixel that has been counted.
        std::uint8_t rest[16];
        std::memset(rest, first, sizeof rest);
        std::memcpy(rest, row + x, width - x);
        Take(LoadBytes(rest));
    }

    bool Complete() const {
        const __m128i zero = _mm_setzero_si128();
        const __m128i ones = _mm_cmpeq_epi8(zero, zero);
        return _mm_movemask_epi8(_mm_cmpeq_epi8(smallest, zero)) != 0
               && _mm_movemask_epi8(_mm_cmpeq_epi8(largest, ones)) != 0;
    }
};

// One byte out of sixteen by halving; `fold` is the minimum or the maximum.
template <class Operation>
std::uint8_t FoldBytes(__m128i bytes, Operation fold) {
    bytes = fold(bytes, _mm_srli_si128(bytes, 8));
    bytes = fold(bytes, _mm_srli_si128(bytes, 4));
    bytes = fold(bytes, _mm_srli_si128(bytes, 2));
    bytes = fold(bytes, _mm_srli_si128(bytes, 1));
    return static_cast<std::uint8_t>(_mm_cvtsi128_si32(bytes));
}

// Sixteen floats, or sixteen running extremes of the floats seen so far. Four named registers: an array would
// live in memory.
struct FloatBlock {
    __m128 a, b, c, d;

    static FloatBlock Fill(float value) {
        const __m128 all = _mm_set1_ps(value);
        return {all, all, all, all};
    }
    static FloatBlock Load(const float* from) {
        return {_mm_loadu_ps(from), _mm_loadu_ps(from + 4), _mm_loadu_ps(from + 8), _mm_loadu_ps(from + 12)};
    }
    bool HasZero() const {
        const __m128 zero = _mm_setzero_ps();
        const __m128 inAB = _mm_or_ps(_mm_cmpeq_ps(a, zero), _mm_cmpeq_ps(b, zero));
        const __m128 inCD = _mm_or_ps(_mm_cmpeq_ps(c, zero), _mm_cmpeq_ps(d, zero));
        return _mm_movemask_ps(_mm_or_ps(inAB, inCD)) != 0;
    }
};

// Both keep the running value, their second operand, unless the element wins strictly: so an element that is
// not a number never wins.
struct Greater {
    static __m128 Lanes(__m128 element, __m128 running) { return _mm_max_ps(element, running); }
    static bool Wins(float element, float running) { return element > running; }
};
struct Less {
    static __m128 Lanes(__m128 element, __m128 running) { return _mm_min_ps(element, running); }
    static bool Wins(float element, float running) { return element < running; }
};

template <class Order>
void Take(const FloatBlock& elements, FloatBlock& running) {
    running.a = Order::Lanes(elements.a, running.a);
    running.b = Order::Lanes(elements.b, running.b);
    running.c = Order::Lanes(elements.c, running.c);
    running.d = Order::Lanes(elements.d, running.d);
}

template <class Order>
void Take(float element, float& running) {
    if (Order::Wins(element, running)) running = element;
}

template <class Order>
float Fold(const FloatBlock& running) {
    float lanes[4];
    _mm_storeu_ps(lanes,
                  Order::Lanes(Order::Lanes(running.a, running.b), Order::Lanes(running.c, running.d)));
    for (int i = 1; i < 4; ++i)
        Take<Order>(lanes[i], lanes[0]);
    return lanes[0];
}

// How far one test for NaNs reaches. A pass of its own: together with the running extremes the tested
// elements would not fit the registers.
constexpr std::size_t kStretch = 64;

bool StretchHasNaN(const float* from) {
    __m128 unordered = _mm_setzero_ps();
    for (std::size_t i = 0; i < kStretch; i += 8)
        unordered = _mm_or_ps(unordered, _mm_cmpunord_ps(_mm_loadu_ps(from + i), _mm_loadu_ps(from + i + 4)));
    return _mm_movemask_ps(unordered) != 0;
}

// The index after the last NaN among `count` elements; 0 without any.
std::size_t AfterLastNaN(const float* from, std::size_t count) {
    while (count > 0 && !std::isnan(from[count - 1]))
        --count;
    return count;
}

// Equal extremes have equal bits except zeros, whose sign is that of the earliest zero. An extreme that is
// zero occurs between `from` and `end`.
void StoreEarliestEqual(const float* from, const float* end, float extreme, float* to) {
    if (extreme == 0.0f) {
        while (end - from >= 16 && !FloatBlock::Load(from).HasZero())
            from += 16;
        while (*from != 0.0f)
            ++from;
        extreme = *from;
    }
    *to = extreme;
}

} // namespace

Status MinMax8uC1(const std::uint8_t* source, std::int32_t sourceStep, std::int32_t width,
                  std::int32_t height, std::uint8_t* smallest, std::uint8_t* largest) {
    if (source == nullptr || smallest == nullptr || largest == nullptr) return StatusNullPointer;
    const Status status = CheckRegion(width, height, sourceStep, sourceStep, 1);
    if (status != StatusNoError) return status;

    const std::uint8_t first = *source;
    RowExtremes extremes(first);
    for (std::int32_t y = 0; y < height && !extremes.Complete(); ++y)
        extremes.TakeRow(RowAt(source, sourceStep, y), static_cast<std::size_t>(width), first);

    *smallest = FoldBytes(extremes.smallest, [](__m128i a, __m128i b) { return _mm_min_epu8(a, b); });
    *largest = FoldBytes(extremes.largest, [](__m128i a, __m128i b) { return _mm_max_epu8(a, b); });
    return StatusNoError;
}

Status VecMax32f(const float* source, std::int32_t length, float* largest) {
    if (source == nullptr || largest == nullptr) return StatusNullPointer;
    const Status status = CheckLength(length);
    if (status != StatusNoError) return status;

    // Nothing compares greater than a NaN.
    if (std::isnan(*source)) {
        std::memcpy(largest, source, sizeof *largest);
        return StatusNoError;
    }

    const std::size_t count = static_cast<std::size_t>(length);
    FloatBlock running = FloatBlock::Fill(*source);
    std::size_t i = 0;
    for (; count - i >= 16; i += 16)
        Take<Greater>(FloatBlock::Load(source + i), running);
    float result = Fold<Greater>(running);
    for (; i < count; ++i)
        Take<Greater>(source[i], result);
    StoreEarliestEqual(source, source + count, result, largest);
    return StatusNoError;
}

Status VecMin32f(const float* source, std::int32_t length, float* smallest) {
    if (source == nullptr || smallest == nullptr) return StatusNullPointer;
    const Status status = CheckLength(length);
    if (status != StatusNoError) return status;

    // Stretch by stretch; after a NaN the scan starts again, as if nothing had come before.
    const std::size_t count = static_cast<std::size_t>(length);
    const FloatBlock nothing = FloatBlock::Fill(std::numeric_limits<float>::infinity());
    FloatBlock running = nothing;
    std::size_t afterNaN = 0;
    std::size_t i = 0;
    while (count - i >= kStretch) {
        if (StretchHasNaN(source + i)) {
            i = afterNaN = AfterLastNaN(source, i + kStretch);
            running = nothing;
            continue;
        }
        for (const std::size_t end = i + kStretch; i < end; i += 16)
            Take<Less>(FloatBlock::Load(source + i), running);
    }

    // The vector's end one by one.
    if (const std::size_t after = AfterLastNaN(source + i, count - i); after > 0) {
        i = afterNaN = i + after;
        running = nothing;
    }
    float result = Fold<Less>(running);
    for (; i < count; ++i)
        Take<Less>(source[i], result);

    if (afterNaN == count)
        std::memcpy(smallest, source + count - 1, sizeof *smallest);
    else
        StoreEarliestEqual(source + afterNaN, source + count, result, smallest);
    return StatusNoError;
}

} // namespace z3d::primitives
