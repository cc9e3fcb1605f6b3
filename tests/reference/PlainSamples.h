// Samples at any byte offset of a region: steps need not be multiples of the sample size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace z3d::reference {

// Sample `index` of row `y`.
template <class T>
T SampleAt(const T* region, std::int32_t step, std::int64_t y, std::int64_t index) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(region);
    T sample;
    std::memcpy(&sample, bytes + step * y + index * std::int64_t{sizeof(T)}, sizeof sample);
    return sample;
}

template <class T>
void StoreSample(T* region, std::int32_t step, std::int64_t y, std::int64_t index, T sample) {
    auto* bytes = reinterpret_cast<std::uint8_t*>(region);
    std::memcpy(bytes + step * y + index * std::int64_t{sizeof(T)}, &sample, sizeof sample);
}

// One sample's bytes, without a value in between: the way to move a signalling NaN unchanged.
template <class T>
void CopySample(const T* source, std::int32_t sourceStep, std::int64_t sourceY, std::int64_t sourceIndex,
                T* destination, std::int32_t destinationStep, std::int64_t y, std::int64_t index) {
    const auto* from = reinterpret_cast<const std::uint8_t*>(source) + sourceStep * sourceY;
    auto* to = reinterpret_cast<std::uint8_t*>(destination) + destinationStep * y;
    std::memcpy(to + index * std::int64_t{sizeof(T)}, from + sourceIndex * std::int64_t{sizeof(T)},
                sizeof(T));
}

} // namespace z3d::reference
