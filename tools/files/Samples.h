// Stored samples, their values, and the bytes that stand for them.
#pragma once

#include <limits>
#include <optional>
#include <vector>

#include "VolumeReader.h"

namespace z3d::files {

// Turns samples into bytes: low becomes 0, high 255.
class ByteMapping {
public:
    // Fails unless the range is finite and not empty.
    ByteMapping(const VolumeFacts& facts, const ValueRange& input);

    // `bytes` takes one byte a sample, three for Rgb8.
    void Map(const void* samples, size_t count, unsigned char* bytes) const;

private:
    unsigned char ByteOf(double stored) const;
    template <class Sample>
    void MapEach(const void* samples, size_t count, unsigned char* bytes) const;

    SampleType type_;
    double factor_; // of a stored sample
    double offset_;
    std::vector<unsigned char> table_; // for samples of 8 and 16 bits
};

// How often each value occurs. Samples of 8 and 16 bits are told apart exactly, others as floats with 13
// significant bits.
class Histogram {
public:
    explicit Histogram(SampleType type);

    void Count(const void* samples, size_t count);

    // Of stored samples, after leaving out that part of the finite ones at each end. Nothing without any.
    std::optional<ValueRange> RangeWithout(double part) const;

private:
    template <class Sample>
    void CountEach(const void* samples, size_t count);

    SampleType type_;
    std::vector<uint64_t> counts_;
    uint64_t total_ = 0;
    double least_ = std::numeric_limits<double>::infinity();
    double greatest_ = -std::numeric_limits<double>::infinity();
};

} // namespace z3d::files
