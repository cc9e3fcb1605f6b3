#include "compose/GreyConversion.h"

#include "compose/ScratchImage.h"
#include "frame/LockedImage.h"
#include "primitives/Convert.h"
#include "primitives/Range.h"
#include "primitives/Vector.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace z3d::compose {
namespace {

using primitives::ValueRange;

// The low 8 bits of the integer part. From 2^31 on floats are multiples of 256.
std::uint8_t TruncatedByte(float value) {
    if (!(std::fabs(value) < 2147483648.0f)) return 0;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(value));
}

// Scales, measures and rounds the samples of one slice in runs that stay in the first-level cache.
class SampleConverter {
public:
    explicit SampleConverter(const ValueRange& range)
        : scale_(255.0f / (range.max - range.min)),
          shift_((range.min * -255.0f) / (range.max - range.min)),
          scratch_(primitives::VecMalloc32f(1 + kRunSamples)) {}

    explicit operator bool() const { return scratch_ != nullptr; }

    // Converts all samples and widens `display` by the largest and the smallest scaled value.
    void Convert(const float* samples, std::uint8_t* bytes, std::size_t count, ValueRange& display) {
        ValueRange extremes; // of no meaning before the first run
        for (std::size_t first = 0; first < count; first += kRunSamples) {
            const std::size_t rest = count - first;
            const std::int32_t run = rest < kRunSamples ? static_cast<std::int32_t>(rest) : kRunSamples;
            ConvertRun(samples + first, bytes + first, run);
            extremes = first == 0 ? ExtremesOf(run) : ExtremesWith(extremes, run);
        }
        display.Widen(extremes);
    }

private:
    static constexpr std::int32_t kRunSamples = 4096;

    float* Values() const { return scratch_.get() + 1; }

    void ConvertRun(const float* samples, std::uint8_t* bytes, std::int32_t run) {
        primitives::VecCopy32f(samples, Values(), run);
        // The order is part of the result: first scaled, then shifted.
        primitives::VecMulC32fInPlace(scale_, Values(), run);
        primitives::VecAddC32fInPlace(shift_, Values(), run);
        primitives::VecConvert32f8uSfs(Values(), bytes, run, primitives::kRoundHalfToEven, 0);
    }

    ValueRange ExtremesOf(std::int32_t run) const {
        ValueRange extremes;
        primitives::VecMax32f(Values(), run, &extremes.max);
        primitives::VecMin32f(Values(), run, &extremes.min);
        return extremes;
    }

    // With a NaN among the values the scans depend on their order, so a scan goes on from the last run: its
    // value is put in front of this one.
    ValueRange ExtremesWith(const ValueRange& before, std::int32_t run) const {
        ValueRange extremes;
        scratch_[0] = before.max;
        primitives::VecMax32f(scratch_.get(), 1 + run, &extremes.max);
        scratch_[0] = before.min;
        primitives::VecMin32f(scratch_.get(), 1 + run, &extremes.min);
        return extremes;
    }

    float scale_;
    float shift_;
    ScratchImage<float> scratch_; // one value, then a run
};

// The slice as bytes: a new image, or the slice itself when it holds no floats. Null when memory is short.
Image2D* ConvertSlice(Image2D* slice, const ValueRange& range, ValueRange& display) {
    if (slice == nullptr || slice->bytesPerPixel != 4) return slice;
    frame::OwnedImage image(frame::AllocUnset2D(slice->width, slice->height, 1));
    const frame::LockedImage from(slice);
    const frame::LockedImage to(image.get());
    if (!from || !to) return nullptr;

    if (range.max == range.min) {
        display.Widen(range.min);
        std::memset(to.Bytes(), TruncatedByte(range.min), to.ByteCount());
    } else {
        SampleConverter converter(range);
        if (!converter) return nullptr;
        converter.Convert(from.Floats(), to.Bytes(), to.PixelCount(), display);
    }
    return image.release();
}

} // namespace

frame::OwnedVolume ConvertToGrey(Volume3D* source, const ValueRange& range, ValueRange& display,
                                 const frame::Host& host) {
    frame::OwnedVolume result;
    if (source != nullptr) {
        result.reset(frame::GlobalAlloc3D(source->width, source->height, source->depth, 0));
    }
    if (!result) {
        host.CannotRun();
        return nullptr;
    }

    display = ValueRange();
    const std::int32_t depth = source->depth;
    for (std::int32_t z = 0; z < depth; ++z) {
        if (host.Progress(z, depth) == frame::Answer::Cancel) return nullptr;
        Image2D*& slot = source->slices[z];
        Image2D* converted = ConvertSlice(slot, range, display);
        result->slices[z] = converted;
        if (converted == nullptr) return nullptr;
        if (converted != slot) frame::GlobalFree2D(slot);
        slot = nullptr;
    }
    return result;
}

} // namespace z3d::compose
