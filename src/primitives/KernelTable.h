// The loops over whole slices that are worth the newest instructions. There is one table per instruction set, all with
// the same results; what is decided once per call is decided by the callers, in code that every processor runs.
#pragma once

#include "primitives/Compose.h"
#include "primitives/DepthWeights.h"
#include "primitives/ResizeColumns.h"

#include <cstddef>
#include <cstdint>

namespace z3d::primitives {

// The samples of a channel; `advance` is 1, or 0 where its first kChannelBlock samples stand for all.
template <class Sample>
struct ChannelSamples {
    const Sample* first;
    std::size_t advance;
};
inline constexpr std::size_t kChannelBlock = 32;

// t = sample * slope + offset, in double: t - 0.5 rounded to nearest, ties to even, and cut to 0 and 255, is the byte.
struct FloatScale {
    double slope, offset;
};

struct ByteExtremes {
    std::uint8_t max;
    std::uint8_t min;
};
struct FloatExtremes {
    float max;
    float min;
};

struct KernelTable {
    // `count` pixels of three bytes, and the range of their sums. See Compose.h.
    SumRange (*composeBytes)(const ChannelSamples<std::uint8_t> (&channels)[3], std::uint8_t* pixels,
                             std::size_t count, ByteRange range);
    SumRange (*composeFloats)(const ChannelSamples<float> (&channels)[3], std::uint8_t* pixels,
                              std::size_t count, FloatScale scale);

    // The passes of a resize: see ResizePasses.h. Those by groups of columns are null where there is no instruction
    // for it.
    void (*blendByteColumns)(const std::uint8_t* row, const ByteColumnGroup* groups,
                             const ByteColumnWeight* weights, std::int16_t* to, std::size_t count);
    void (*blendFloatColumns)(const std::uint8_t* row, const FloatColumnGroup* groups,
                              const double* fractions, double* to, std::size_t count);
    void (*blendByteRows)(const std::int16_t* upper, const std::int16_t* lower, std::int32_t weight,
                          std::uint8_t* to, std::size_t count);
    void (*blendFloatRows)(const double* upper, const double* lower, double weight, std::uint8_t* to,
                           std::size_t count);

    // Two slices as one: see DepthWeights.h. The result overlaps neither, which may be the same.
    void (*blendBytes)(const ByteDepthWeights& weights, const std::uint8_t* a, const std::uint8_t* b,
                       std::uint8_t* to, std::size_t count);
    void (*blendFloats)(const DepthWeights& weights, const float* a, const float* b, float* to,
                        std::size_t count);

    // Of no samples: the two the wrong way round.
    ByteExtremes (*extremesOfBytes)(const std::uint8_t* samples, std::size_t count);
    // Each extreme is replaced by what is greater (smaller); a NaN never is. An extreme that becomes zero is a zero of
    // either sign.
    FloatExtremes (*widenByFloats)(FloatExtremes extremes, const float* samples, std::size_t count);
};

// Those of the instruction set in use.
const KernelTable& CurrentKernels();

} // namespace z3d::primitives
