#include "reference/PlainPrimitives.h"

#include "reference/PlainSamples.h"

#include <cmath>

namespace z3d::reference {
namespace {

using namespace primitives;

Status CheckSize(std::int32_t width, std::int32_t height) {
    return width < 1 || height < 1 ? StatusSizeError : StatusNoError;
}

Status CheckRegions(const void* source, std::int32_t sourceStep, const void* destination,
                    std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    if (width < 1 || height < 1) return StatusSizeError;
    if (sourceStep < 1 || destinationStep < 1) return StatusStepError;
    return StatusNoError;
}

template <class T>
Status CopyPlanes(const T* const* planes, std::int32_t sourceStep, T* destination,
                  std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    if (planes == nullptr || destination == nullptr) return StatusNullPointer;
    if (planes[0] == nullptr || planes[1] == nullptr || planes[2] == nullptr) return StatusNullPointer;
    const Status status = CheckRegions(planes, sourceStep, destination, destinationStep, width, height);
    if (status != StatusNoError) return status;
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c)
                CopySample(planes[c], sourceStep, y, x, destination, destinationStep, y, 3 * x + c);
    return StatusNoError;
}

// t truncated, an odd result that was exact going down by one.
std::uint8_t TruncateToEven(double t) {
    std::int32_t r = static_cast<std::int32_t>(t);
    if (r % 2 != 0 && static_cast<double>(r) == t) r -= 1;
    return static_cast<std::uint8_t>(r);
}

std::uint8_t Convert(double y, std::int32_t roundingMode) {
    if (y >= 255.0) return 255;
    if (y <= 0.0 || std::isnan(y)) return 0;
    if (roundingMode == 1) return TruncateToEven(y + 0.5);
    return static_cast<std::uint8_t>(y);
}

} // namespace

Status Set8uC1(std::uint8_t value, std::uint8_t* destination, std::int32_t destinationStep,
               std::int32_t width, std::int32_t height) {
    const Status status =
        CheckRegions(destination, destinationStep, destination, destinationStep, width, height);
    if (status != StatusNoError) return status;
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x)
            StoreSample(destination, destinationStep, y, x, value);
    return StatusNoError;
}

Status VecCopy32f(const float* source, float* destination, std::int32_t length) {
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    if (length < 1) return StatusSizeError;
    for (std::int64_t i = 0; i < length; ++i)
        CopySample(source, 0, 0, i, destination, 0, 0, i);
    return StatusNoError;
}

Status CopyPlanes8uP3C3(const std::uint8_t* const* planes, std::int32_t sourceStep, std::uint8_t* destination,
                        std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    return CopyPlanes(planes, sourceStep, destination, destinationStep, width, height);
}

Status CopyPlanes32fP3C3(const float* const* planes, std::int32_t sourceStep, float* destination,
                         std::int32_t destinationStep, std::int32_t width, std::int32_t height) {
    return CopyPlanes(planes, sourceStep, destination, destinationStep, width, height);
}

Status VecMulC32fInPlace(float value, float* data, std::int32_t length) {
    if (data == nullptr) return StatusNullPointer;
    if (length < 1) return StatusSizeError;
    if (value == 1.0f || std::isnan(value)) return StatusNoError;
    for (std::int32_t i = 0; i < length; ++i)
        data[i] = value == 0.0f ? 0.0f : static_cast<float>(double{data[i]} * double{value});
    return StatusNoError;
}

Status VecAddC32fInPlace(float value, float* data, std::int32_t length) {
    if (data == nullptr) return StatusNullPointer;
    if (length < 1) return StatusSizeError;
    if (value == 0.0f || std::isnan(value)) return StatusNoError;
    for (std::int32_t i = 0; i < length; ++i)
        data[i] = static_cast<float>(double{data[i]} + double{value});
    return StatusNoError;
}

Status VecConvert32f8uSfs(const float* source, std::uint8_t* destination, std::int32_t length,
                          std::int32_t roundingMode, std::int32_t scaleFactor) {
    if (source == nullptr || destination == nullptr) return StatusNullPointer;
    if (length < 1) return StatusSizeError;
    double multiplier = 1.0;
    for (std::int64_t i = 0; i < scaleFactor; ++i)
        multiplier /= 2.0;
    for (std::int64_t i = 0; i < -std::int64_t{scaleFactor}; ++i)
        multiplier *= 2.0;
    for (std::int32_t i = 0; i < length; ++i) {
        const double x = double{source[i]};
        destination[i] = Convert(scaleFactor == 0 ? x : x * multiplier, roundingMode);
    }
    return StatusNoError;
}

Status Convert32f8uC3(const float* source, std::int32_t sourceStep, std::uint8_t* destination,
                      std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                      std::int32_t roundingMode) {
    const Status status = CheckRegions(source, sourceStep, destination, destinationStep, width, height);
    if (status != StatusNoError) return status;
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int64_t i = 0; i < std::int64_t{3} * width; ++i) {
            const double x = double{SampleAt(source, sourceStep, y, i)};
            StoreSample(destination, destinationStep, y, i, Convert(x, roundingMode));
        }
    return StatusNoError;
}

Status Scale8u32fC3(const std::uint8_t* source, std::int32_t sourceStep, float* destination,
                    std::int32_t destinationStep, std::int32_t width, std::int32_t height, float vMin,
                    float vMax) {
    const double range = double{vMax} - double{vMin};
    if (range <= 0.0 || std::isnan(range)) return StatusRangeError;
    const Status status = CheckRegions(source, sourceStep, destination, destinationStep, width, height);
    if (status != StatusNoError) return status;
    const double k = range * double{1.0f / 255.0f};
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int64_t i = 0; i < std::int64_t{3} * width; ++i) {
            const double byte = SampleAt(source, sourceStep, y, i);
            StoreSample(destination, destinationStep, y, i, static_cast<float>(byte * k + double{vMin}));
        }
    return StatusNoError;
}

Status Scale32f8uC3(const float* source, std::int32_t sourceStep, std::uint8_t* destination,
                    std::int32_t destinationStep, std::int32_t width, std::int32_t height, float vMin,
                    float vMax) {
    const double range = double{vMax} - double{vMin};
    if (range <= 0.0 || std::isnan(range)) return StatusRangeError;
    const Status status = CheckRegions(source, sourceStep, destination, destinationStep, width, height);
    if (status != StatusNoError) return status;
    const double k = 255.0 / range;
    const double q = 0.5 - k * double{vMin};
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int64_t i = 0; i < std::int64_t{3} * width; ++i) {
            const float x = SampleAt(source, sourceStep, y, i);
            const double t = double{x} * k + q;
            std::uint8_t byte;
            if (x >= vMax)
                byte = 255;
            else if (x <= vMin || std::isnan(x) || std::isnan(t)) // t: only with an infinite range
                byte = 0;
            else
                byte = TruncateToEven(t);
            StoreSample(destination, destinationStep, y, i, byte);
        }
    return StatusNoError;
}

Status ColorToGray8uC3C1(const std::uint8_t* source, std::int32_t sourceStep, std::uint8_t* destination,
                         std::int32_t destinationStep, std::int32_t width, std::int32_t height,
                         const float* weights) {
    const Status status = CheckRegions(source, sourceStep, destination, destinationStep, width, height);
    if (status != StatusNoError) return status;
    std::int64_t w[3] = {1225, 2404, 467};
    if (weights != nullptr)
        for (int c = 0; c < 3; ++c) {
            // Beyond 2^40 nothing of a float's sum reaches the stored byte.
            const double units = 4096.0 * double{weights[c]} + 0.5;
            w[c] = std::fabs(units) < 0x1p40 ? static_cast<std::int64_t>(units) : 0;
        }
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x) {
            std::int64_t sum = 0;
            for (int c = 0; c < 3; ++c)
                sum += w[c] * SampleAt(source, sourceStep, y, 3 * x + c);
            StoreSample(destination, destinationStep, y, x, static_cast<std::uint8_t>(sum >> 12));
        }
    return StatusNoError;
}

Status MinMax8uC1(const std::uint8_t* source, std::int32_t sourceStep, std::int32_t width,
                  std::int32_t height, std::uint8_t* smallest, std::uint8_t* largest) {
    if (source == nullptr || smallest == nullptr || largest == nullptr) return StatusNullPointer;
    if (CheckSize(width, height) != StatusNoError) return StatusSizeError;
    if (sourceStep < 1) return StatusStepError;
    std::uint8_t low = *source;
    std::uint8_t high = *source;
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int64_t x = 0; x < width; ++x) {
            const std::uint8_t v = SampleAt(source, sourceStep, y, x);
            if (v < low)
                low = v;
            else if (v > high)
                high = v;
        }
        if (low == 0 && high == 255) break;
    }
    *smallest = low;
    *largest = high;
    return StatusNoError;
}

// The running element is kept by its index, so that its bits reach the result whatever they are.
Status VecMax32f(const float* source, std::int32_t length, float* largest) {
    if (source == nullptr || largest == nullptr) return StatusNullPointer;
    if (length < 1) return StatusSizeError;
    std::int32_t running = 0;
    for (std::int32_t i = 0; i < length; ++i)
        if (source[i] > source[running]) running = i;
    CopySample(source, 0, 0, running, largest, 0, 0, 0);
    return StatusNoError;
}

Status VecMin32f(const float* source, std::int32_t length, float* smallest) {
    if (source == nullptr || smallest == nullptr) return StatusNullPointer;
    if (length < 1) return StatusSizeError;
    std::int32_t running = 0;
    for (std::int32_t i = 1; i < length; ++i)
        if (source[i] < source[running] || std::isnan(source[i]) || std::isnan(source[running])) running = i;
    CopySample(source, 0, 0, running, smallest, 0, 0, 0);
    return StatusNoError;
}

double BlendDepth(double t, double min, double max, double a, double b) {
    double v = a * (1 - t) + b * t;
    if (v < min) v = min;
    if (v > max) v = max;
    return v;
}

std::vector<std::uint8_t> BlendDepth8u(double t, double min, double max, const std::vector<std::uint8_t>& a,
                                       const std::vector<std::uint8_t>& b) {
    std::vector<std::uint8_t> result;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double v = BlendDepth(t, min, max, a[i], b[i]);
        result.push_back(static_cast<std::uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v));
    }
    return result;
}

} // namespace z3d::reference
