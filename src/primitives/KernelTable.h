// The loops over whole slices that are worth the newest instructions. There is one table per instruction set, all with
// the same results; what is decided once per call is decided by the callers, in code that every processor runs.
#pragma once

#include "primitives/Compose.h"

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

// t = sample * slope + offset, in double: where it is at most `top` - 1, t - 0.5 rounded to nearest is the byte.
struct FloatScale {
    double slope, offset;
};

struct KernelTable {
    // `count` pixels of three bytes, and the range of their sums. See Compose.h.
    SumRange (*composeBytes)(const ChannelSamples<std::uint8_t> (&channels)[3], std::uint8_t* pixels,
                             std::size_t count, ByteRange range);
    SumRange (*composeFloats)(const ChannelSamples<float> (&channels)[3], std::uint8_t* pixels,
                              std::size_t count, FloatScale scale);
};

// Those of the instruction set in use.
const KernelTable& CurrentKernels();

} // namespace z3d::primitives
