#include "compose/ChannelKernels.h"

#include "compose/ScratchImage.h"
#include "primitives/Compose.h"
#include "primitives/Convert.h"
#include "primitives/Grey.h"
#include "primitives/Planes.h"
#include "primitives/Range.h"
#include "primitives/Scale.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace z3d::compose {
namespace {

using primitives::ValueRange;

// Every step looks at one sample or one pixel alone, so a slice is taken in runs of pixels that stay in the
// first-level cache from one step to the next. A run is an image of one row.
constexpr std::int32_t kRunPixels = 1024;

// How bright pixels are: the mean of the three channels, by weights that add up to 4095 / 4096.
class Brightness {
public:
    // The three weights are the same, 1365 / 4096: the darkest and the brightest pixel are those of the smallest
    // and the largest sum.
    void Widen(const primitives::SumRange& sums) {
        min_ = std::min(min_, (1365 * sums.min) >> 12);
        max_ = std::max(max_, (1365 * sums.max) >> 12);
    }

    // `grey` is scratch of one byte per pixel.
    void Widen(const std::uint8_t* pixels, std::int32_t count, std::uint8_t* grey) {
        constexpr float kThird = 1.0f / 3.0f;
        constexpr float kWeights[3] = {kThird, kThird, kThird};
        primitives::ColorToGray8uC3C1(pixels, 3 * count, grey, count, count, 1, kWeights);
        std::uint8_t smallest = 0;
        std::uint8_t largest = 0;
        primitives::MinMax8uC1(grey, count, count, 1, &smallest, &largest);
        min_ = std::min<std::int32_t>(min_, smallest);
        max_ = std::max<std::int32_t>(max_, largest);
    }

    // As sums of three channels. The upper end is one level more, which makes up for the weights' missing part.
    ValueRange Sums() const {
        const std::int32_t end = max_ < 255 ? max_ + 1 : max_;
        return {static_cast<float>(end * 3), static_cast<float>(min_ * 3)};
    }

private:
    std::int32_t min_ = 255;
    std::int32_t max_ = 0;
};

template <class Sample>
ScratchImage<Sample> ZeroSamples(std::size_t count, Sample* memory) {
    if (memory != nullptr) std::memset(memory, 0, count * sizeof(Sample));
    return ScratchImage<Sample>(memory);
}

// Calls step(first pixel, pixels) for each run.
template <class Step>
void ForEachRun(std::size_t count, Step step) {
    for (std::size_t first = 0; first < count; first += kRunPixels) {
        const std::size_t rest = count - first;
        step(first, rest < kRunPixels ? static_cast<std::int32_t>(rest) : kRunPixels);
    }
}

// The planes from one pixel on, `zeroes` standing in for a missing one.
template <class Sample>
struct PlaneRun {
    const Sample* planes[3];

    PlaneRun(const Planes<Sample>& all, std::size_t first, const Sample* zeroes)
        : planes{From(all.red, first, zeroes), From(all.green, first, zeroes),
                 From(all.blue, first, zeroes)} {}

private:
    static const Sample* From(const Sample* plane, std::size_t first, const Sample* zeroes) {
        return plane != nullptr ? plane + first : zeroes;
    }
};

bool IsByte(float value) {
    return value >= 0.0f && value <= 255.0f && value == static_cast<float>(static_cast<std::uint8_t>(value));
}

// The range of any bytes that are not all the same.
bool IsOfBytes(const ValueRange& range) {
    return IsByte(range.min) && IsByte(range.max) && range.min < range.max;
}

} // namespace

bool ComposeBytes(const Planes<std::uint8_t>& planes, std::uint8_t* pixels, std::size_t count,
                  const ValueRange& range, ValueRange& display) {
    Brightness brightness;
    if (IsOfBytes(range)) {
        brightness.Widen(primitives::Compose8uP3C3(
            {planes.red, planes.green, planes.blue}, pixels, count,
            {static_cast<std::uint8_t>(range.min), static_cast<std::uint8_t>(range.max)}));
        display.Widen(brightness.Sums());
        return true;
    }

    std::int32_t step = 0;
    const auto zeroes = ZeroSamples(kRunPixels, primitives::ImageMalloc8uC1(kRunPixels, 1, &step));
    const ScratchImage<std::uint8_t> interleaved(primitives::ImageMalloc8uC3(kRunPixels, 1, &step));
    // Without a range the scaling writes nothing, and these zeroes are what is converted.
    const auto values = ZeroSamples(3 * kRunPixels, primitives::ImageMalloc32fC3(kRunPixels, 1, &step));
    if (!zeroes || !interleaved || !values) return false;

    ForEachRun(count, [&](std::size_t first, std::int32_t run) {
        const PlaneRun from(planes, first, zeroes.get());
        std::uint8_t* to = pixels + 3 * first;
        primitives::CopyPlanes8uP3C3(from.planes, run, interleaved.get(), 3 * run, run, 1);
        primitives::Scale8u32fC3(interleaved.get(), 3 * run, values.get(), 12 * run, run, 1, range.min,
                                 range.max);
        primitives::Convert32f8uC3(values.get(), 12 * run, to, 3 * run, run, 1, primitives::kRoundHalfToEven);
        brightness.Widen(to, run, interleaved.get());
    });
    display.Widen(brightness.Sums());
    return true;
}

bool ComposeFloats(const Planes<float>& planes, std::uint8_t* pixels, std::size_t count,
                   const ValueRange& range, ValueRange& display) {
    Brightness brightness;
    if (range.min < range.max && std::isfinite(range.min) && std::isfinite(range.max)) {
        brightness.Widen(primitives::Compose32f8uP3C3({planes.red, planes.green, planes.blue}, pixels, count,
                                                      range.min, range.max));
        display.Widen(brightness.Sums());
        return true;
    }

    std::int32_t step = 0;
    const auto zeroes = ZeroSamples(kRunPixels, primitives::ImageMalloc32fC1(kRunPixels, 1, &step));
    const ScratchImage<float> interleaved(primitives::ImageMalloc32fC3(kRunPixels, 1, &step));
    const ScratchImage<std::uint8_t> grey(primitives::ImageMalloc8uC1(kRunPixels, 1, &step));
    if (!zeroes || !interleaved || !grey) return false;

    ForEachRun(count, [&](std::size_t first, std::int32_t run) {
        const PlaneRun from(planes, first, zeroes.get());
        std::uint8_t* to = pixels + 3 * first;
        // Without a range the scaling writes nothing.
        if (!(range.min < range.max)) std::memset(to, 0, 3 * static_cast<std::size_t>(run));
        primitives::CopyPlanes32fP3C3(from.planes, 4 * run, interleaved.get(), 12 * run, run, 1);
        primitives::Scale32f8uC3(interleaved.get(), 12 * run, to, 3 * run, run, 1, range.min, range.max);
        brightness.Widen(to, run, grey.get());
    });
    display.Widen(brightness.Sums());
    return true;
}

} // namespace z3d::compose
