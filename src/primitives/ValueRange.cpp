#include "primitives/ValueRange.h"

#include "primitives/KernelTable.h"

#include <algorithm>

namespace z3d::primitives {
namespace {

constexpr std::size_t kBytesPerChunk = 16384;
constexpr std::size_t kFloatsPerChunk = 4096;

// Equal values have equal bits, except zeros. An extreme that became zero in these samples is the first zero
// among them, whichever one the kernel saw.
float FirstZero(const float* samples) {
    while (*samples != 0.0f)
        ++samples;
    return *samples;
}

} // namespace

void WidenByBytes(ValueRange& range, const std::uint8_t* samples, std::size_t count) {
    for (std::size_t first = 0; first < count; first += kBytesPerChunk) {
        if (range.min <= 0.0f && range.max >= 255.0f) return; // no byte can widen it
        const ByteExtremes extremes =
            CurrentKernels().extremesOfBytes(samples + first, std::min(kBytesPerChunk, count - first));
        range.Widen({static_cast<float>(extremes.max), static_cast<float>(extremes.min)});
    }
}

void WidenByFloats(ValueRange& range, const float* samples, std::size_t count) {
    for (std::size_t first = 0; first < count; first += kFloatsPerChunk) {
        const ValueRange before = range;
        const float* chunk = samples + first;
        const FloatExtremes extremes = CurrentKernels().widenByFloats(
            {range.max, range.min}, chunk, std::min(kFloatsPerChunk, count - first));
        range = {extremes.max, extremes.min};
        if (range.max == 0.0f && before.max != 0.0f) range.max = FirstZero(chunk);
        if (range.min == 0.0f && before.min != 0.0f) range.min = FirstZero(chunk);
    }
}

} // namespace z3d::primitives
