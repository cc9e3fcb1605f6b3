#include "reference/PlainPipeline.h"

#include "reference/PlainPrimitives.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace z3d::reference {
namespace {

std::size_t PixelsOf(const Volume& volume) {
    return static_cast<std::size_t>(volume.width) * static_cast<std::size_t>(volume.height);
}

std::size_t SliceBytes(const Volume& volume) {
    return PixelsOf(volume) * static_cast<std::size_t>(volume.bytesPerVoxel);
}

Volume Zeroes(int width, int height, int depth, int bytesPerVoxel) {
    Volume volume = {width, height, depth, bytesPerVoxel, {}};
    volume.voxels.resize(SliceBytes(volume) * static_cast<std::size_t>(depth));
    return volume;
}

template <class Sample = std::uint8_t>
const Sample* Slice(const Volume& volume, int z) {
    return reinterpret_cast<const Sample*>(volume.voxels.data()
                                           + SliceBytes(volume) * static_cast<std::size_t>(z));
}

template <class Sample = std::uint8_t>
Sample* Slice(Volume& volume, int z) {
    return const_cast<Sample*>(Slice<Sample>(static_cast<const Volume&>(volume), z));
}

template <class Sample>
void ScanSamples(const Sample* samples, std::size_t count, Range& range) {
    for (std::size_t i = 0; i < count; ++i) {
        const float value = static_cast<float>(samples[i]);
        if (value > range.max) range.max = value;
        if (value < range.min) range.min = value;
    }
}

double Clamped(double v, const Range& bounds) {
    if (v < bounds.min) v = bounds.min;
    if (v > bounds.max) v = bounds.max;
    return v;
}

void Widen(Range& range, float max, float min) {
    if (max > range.max) range.max = max;
    if (min < range.min) range.min = min;
}

Size FittedSize(const Size& stored, int maxDiagonal) {
    const long double w = stored.width;
    const long double h = stored.height;
    const long double d = stored.depth;
    const long double diagonal = std::sqrt(w * w + h * h + d * d);
    if (!(diagonal > maxDiagonal)) return stored;
    const long double s = maxDiagonal / diagonal;
    const auto fitted = [s](long double length) { return std::max(1, static_cast<int>(length * s)); };
    return {fitted(w), fitted(h), fitted(d)};
}

// Of the integer part, which may be of any size.
std::uint8_t LowByteOf(double value) {
    if (!std::isfinite(value)) return 0;
    return static_cast<std::uint8_t>(static_cast<int>(std::fmod(std::trunc(value), 256.0)));
}

// The two ends of a composed slice's brightness, as sums of three channels.
void WidenByBrightness(Range& display, const std::uint8_t* pixels, int width, int height) {
    const float weights[3] = {1.0f / 3, 1.0f / 3, 1.0f / 3};
    std::vector<std::uint8_t> grey(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    ColorToGray8uC3C1(pixels, 3 * width, grey.data(), width, width, height, weights);
    std::uint8_t smallest = 0;
    std::uint8_t largest = 0;
    MinMax8uC1(grey.data(), width, width, height, &smallest, &largest);
    const int end = largest < 255 ? largest + 1 : largest;
    Widen(display, static_cast<float>(end * 3.0), static_cast<float>(smallest * 3.0));
}

void ComposeByteSlice(const std::uint8_t* const* planes, Volume& result, int z, const Range& range) {
    const int w = result.width;
    const int h = result.height;
    std::vector<std::uint8_t> interleaved(SliceBytes(result));
    std::vector<float> values(SliceBytes(result));
    CopyPlanes8uP3C3(planes, w, interleaved.data(), 3 * w, w, h);
    Scale8u32fC3(interleaved.data(), 3 * w, values.data(), 12 * w, w, h, range.min, range.max);
    Convert32f8uC3(values.data(), 12 * w, Slice(result, z), 3 * w, w, h, 1);
}

void ComposeFloatSlice(const float* const* planes, Volume& result, int z, const Range& range) {
    const int w = result.width;
    const int h = result.height;
    std::vector<float> interleaved(SliceBytes(result));
    CopyPlanes32fP3C3(planes, 4 * w, interleaved.data(), 12 * w, w, h);
    Scale32f8uC3(interleaved.data(), 12 * w, Slice(result, z), 3 * w, w, h, range.min, range.max);
}

template <class Sample>
const Sample* SliceOrZeroes(const Volume* volume, int z, const std::vector<Sample>& zeroes) {
    return volume != nullptr ? Slice<Sample>(*volume, z) : zeroes.data();
}

} // namespace

void Scan(const Volume& volume, Range& range) {
    for (int z = 0; z < volume.depth; ++z) {
        if (volume.bytesPerVoxel == 4) {
            ScanSamples(Slice<float>(volume, z), PixelsOf(volume), range);
        } else {
            ScanSamples(Slice(volume, z), SliceBytes(volume), range);
        }
    }
}

Volume ResizeSlices(const Volume& volume, int newWidth, int newHeight) {
    Volume result = Zeroes(newWidth, newHeight, volume.depth, volume.bytesPerVoxel);
    const ImageSize size = {volume.width, volume.height};
    const ImageRect rectangle = {1, 1, volume.width, volume.height};
    const double xFactor = static_cast<double>(newWidth) / volume.width;
    const double yFactor = static_cast<double>(newHeight) / volume.height;
    for (int z = 0; z < volume.depth; ++z) {
        if (volume.bytesPerVoxel == 4) {
            Resize32fC1(Slice<float>(volume, z), size, 4 * size.width, rectangle, Slice<float>(result, z),
                        4 * newWidth, {newWidth, newHeight}, xFactor, yFactor, 2);
        } else {
            Resize8uC1(Slice(volume, z), size, size.width, rectangle, Slice(result, z), newWidth,
                       {newWidth, newHeight}, xFactor, yFactor, 2);
        }
    }
    return result;
}

Volume ResampleDepth(const Volume& volume, int newDepth, const Range& bounds) {
    Volume result = Zeroes(volume.width, volume.height, newDepth, volume.bytesPerVoxel);
    const double ratio = static_cast<double>(volume.depth) / newDepth;
    const double offset = (ratio - 1.0) * 0.5;
    for (int z = 0; z < newDepth; ++z) {
        const double position = z * ratio + offset;
        const int lower = std::min(std::max(static_cast<int>(std::floor(position)), 0), volume.depth - 1);
        const int upper = std::min(lower + 1, volume.depth - 1);
        const double t = position - lower;
        for (std::size_t i = 0; i < PixelsOf(volume); ++i) {
            if (volume.bytesPerVoxel == 4) {
                const double a = Slice<float>(volume, lower)[i];
                const double b = Slice<float>(volume, upper)[i];
                Slice<float>(result, z)[i] = static_cast<float>(Clamped(a * (1 - t) + b * t, bounds));
            } else {
                const double a = Slice(volume, lower)[i];
                const double b = Slice(volume, upper)[i];
                Slice(result, z)[i] = static_cast<std::uint8_t>(Clamped(a * (1 - t) + b * t, bounds));
            }
        }
    }
    return result;
}

Loaded Load(const FileBytes& file, const Size& stored, bool is8bit, const Size& size, Range& running) {
    Volume volume = Zeroes(stored.width, stored.height, stored.depth, is8bit ? 1 : 4);
    std::copy_n(file.data(), std::min(file.size(), volume.voxels.size()), volume.voxels.data());
    Range range;
    Scan(volume, range);
    if (size.width != stored.width || size.height != stored.height) {
        volume = ResizeSlices(volume, size.width, size.height);
    }
    if (size.depth != stored.depth) volume = ResampleDepth(volume, size.depth, range);
    range = Range();
    Scan(volume, range);
    Scan(volume, running);
    return {volume, range};
}

Volume Compose(const Volume* red, const Volume* green, const Volume* blue, const Range& range,
               Range& display) {
    const Volume& any = red != nullptr ? *red : green != nullptr ? *green : *blue;
    Volume result = Zeroes(any.width, any.height, any.depth, 3);
    display = Range();
    const std::vector<std::uint8_t> zeroBytes(PixelsOf(any));
    const std::vector<float> zeroFloats(PixelsOf(any));
    for (int z = 0; z < any.depth; ++z) {
        if (any.bytesPerVoxel == 4) {
            const float* planes[3] = {SliceOrZeroes(red, z, zeroFloats), SliceOrZeroes(green, z, zeroFloats),
                                      SliceOrZeroes(blue, z, zeroFloats)};
            ComposeFloatSlice(planes, result, z, range);
        } else {
            const std::uint8_t* planes[3] = {SliceOrZeroes(red, z, zeroBytes),
                                             SliceOrZeroes(green, z, zeroBytes),
                                             SliceOrZeroes(blue, z, zeroBytes)};
            ComposeByteSlice(planes, result, z, range);
        }
        WidenByBrightness(display, Slice(result, z), result.width, result.height);
    }
    return result;
}

Volume ConvertToGrey(const Volume& source, const Range& range, Range& display) {
    Volume result = Zeroes(source.width, source.height, source.depth, 1);
    display = Range();
    const auto count = static_cast<std::int32_t>(PixelsOf(source));
    for (int z = 0; z < source.depth; ++z) {
        if (range.max == range.min) {
            Widen(display, range.min, range.min);
            std::fill_n(Slice(result, z), count, LowByteOf(range.min));
            continue;
        }
        std::vector<float> scaled(PixelsOf(source));
        VecCopy32f(Slice<float>(source, z), scaled.data(), count);
        const float d = range.max - range.min;
        VecMulC32fInPlace(255.0f / d, scaled.data(), count);
        VecAddC32fInPlace(range.min * -255.0f / d, scaled.data(), count);
        float largest = 0;
        float smallest = 0;
        VecMax32f(scaled.data(), count, &largest);
        VecMin32f(scaled.data(), count, &smallest);
        Widen(display, largest, smallest);
        VecConvert32f8uSfs(scaled.data(), Slice(result, z), count, 1, 0);
    }
    return result;
}

RgbImage MakeRgbImage(const RgbRequest& request) {
    const Size size = FittedSize(request.stored, request.maxDiagonal);
    const FileBytes* files[3] = {request.red, request.green, request.blue};
    Range running;
    RgbImage image = {};
    Loaded loaded[3];
    const Volume* channels[3] = {};
    for (int c = 0; c < 3; ++c) {
        if (files[c] == nullptr) continue;
        if (c > 0 && files[c] == files[0]) {
            channels[c] = channels[0];
            continue;
        }
        loaded[c] = Load(*files[c], request.stored, request.is8bit, size, running);
        channels[c] = &loaded[c].volume;
        Widen(image.range, loaded[c].range.max, loaded[c].range.min);
    }
    if (channels[1] != channels[0] || channels[2] != channels[0]) {
        image.volume = Compose(channels[0], channels[1], channels[2], running, image.display);
    } else if (request.is8bit) {
        image.volume = loaded[0].volume;
        image.display = running;
    } else {
        image.volume = ConvertToGrey(loaded[0].volume, running, image.display);
    }
    return image;
}

} // namespace z3d::reference
