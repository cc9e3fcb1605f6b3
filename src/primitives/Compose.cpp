#include "primitives/Compose.h"

#include "primitives/KernelTable.h"

namespace z3d::primitives {
namespace {

template <class Sample>
constexpr Sample kZeroes[kChannelBlock] = {};

template <class Sample>
ChannelSamples<Sample> SamplesOf(const Sample* plane) {
    if (plane == nullptr) return {kZeroes<Sample>, 0};
    return {plane, 1};
}

} // namespace

SumRange Compose8uP3C3(const std::uint8_t* const (&planes)[3], std::uint8_t* pixels, std::size_t count,
                       ByteRange range) {
    return CurrentKernels().composeBytes({SamplesOf(planes[0]), SamplesOf(planes[1]), SamplesOf(planes[2])},
                                         pixels, count, range);
}

SumRange Compose32f8uP3C3(const float* const (&planes)[3], std::uint8_t* pixels, std::size_t count,
                          float vMin, float vMax) {
    // As in Scale32f8uC3: the constant is formed first, and added after the product.
    const double slope = 255.0 / (static_cast<double>(vMax) - static_cast<double>(vMin));
    const double offset = 0.5 - slope * static_cast<double>(vMin);
    return CurrentKernels().composeFloats({SamplesOf(planes[0]), SamplesOf(planes[1]), SamplesOf(planes[2])},
                                          pixels, count, {slope, offset});
}

} // namespace z3d::primitives
