#include "Samples.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace z3d::files {

namespace {

template <class Sample>
constexpr bool kIsSmall = std::is_integral_v<Sample> && sizeof(Sample) <= 2;

template <class Sample>
Sample SampleAt(const void* samples, size_t index) {
    Sample sample;
    std::memcpy(&sample, static_cast<const unsigned char*>(samples) + index * sizeof(Sample), sizeof(Sample));
    return sample;
}

// Calls `work` with a sample of the type.
template <class Work>
void WithSample(SampleType type, const Work& work) {
    switch (type) {
    case SampleType::Uint8:
    case SampleType::Rgb8:
        return work(uint8_t{});
    case SampleType::Int8:
        return work(int8_t{});
    case SampleType::Uint16:
        return work(uint16_t{});
    case SampleType::Int16:
        return work(int16_t{});
    case SampleType::Uint32:
        return work(uint32_t{});
    case SampleType::Int32:
        return work(int32_t{});
    case SampleType::Float32:
        return work(float{});
    case SampleType::Float64:
        return work(double{});
    }
}

// Floats in the order of their values, as whole numbers: negative ones have all their bits turned round.
constexpr int kDroppedBits = 11;

uint32_t OrderOf(float value) {
    const auto bits = std::bit_cast<uint32_t>(value);
    return (bits >> 31) != 0 ? ~bits : bits | 0x80000000u;
}

float ValueInOrder(uint32_t order) {
    return std::bit_cast<float>((order >> 31) != 0 ? order & 0x7FFFFFFFu : ~order);
}

// The bin of a sample, counted from the least value.
template <class Sample>
size_t BinOf(Sample sample) {
    if constexpr (kIsSmall<Sample>)
        return static_cast<size_t>(int{sample} - int{std::numeric_limits<Sample>::min()});
    else
        return OrderOf(static_cast<float>(sample) + 0.0f) >> kDroppedBits; // -0 and 0 are one value
}

// The values that share a bin: from the least to the greatest.
template <class Sample>
ValueRange ValuesOf(size_t bin) {
    if constexpr (kIsSmall<Sample>) {
        const double value =
            static_cast<double>(bin) + static_cast<double>(std::numeric_limits<Sample>::min());
        return {value, value};
    } else {
        const uint32_t first = static_cast<uint32_t>(bin) << kDroppedBits;
        return {double{ValueInOrder(first)}, double{ValueInOrder(first | ((1u << kDroppedBits) - 1))}};
    }
}

// A double beyond the floats has no bin either.
template <class Sample>
bool IsCounted(Sample sample) {
    if constexpr (std::is_floating_point_v<Sample>)
        return std::abs(sample) <= Sample{std::numeric_limits<float>::max()};
    else
        return true;
}

} // namespace

unsigned int BytesPerSample(SampleType type) {
    if (type == SampleType::Rgb8) return 3;
    size_t bytes = 0;
    WithSample(type, [&bytes](auto sample) { bytes = sizeof(sample); });
    return static_cast<unsigned int>(bytes);
}

const char* NameOf(SampleType type) {
    constexpr const char* kNames[] = {"uint8", "int8",    "uint16",  "int16", "uint32",
                                      "int32", "float32", "float64", "rgb8"};
    return kNames[static_cast<size_t>(type)];
}

ByteMapping::ByteMapping(const VolumeFacts& facts, const ValueRange& input) : type_(facts.type) {
    const double span = input.high - input.low;
    if (!(span > 0) || !std::isfinite(255 / span) || !std::isfinite(span))
        throw FileFailure("the range of values that become 0 to 255 is empty or infinite");
    factor_ = facts.slope * (255 / span);
    offset_ = (facts.intercept - input.low) * (255 / span);
    WithSample(type_, [this](auto sample) {
        using Sample = decltype(sample);
        if constexpr (kIsSmall<Sample>) {
            table_.resize(size_t{1} << (8 * sizeof(Sample)));
            for (size_t bin = 0; bin < table_.size(); ++bin)
                table_[bin] = ByteOf(ValuesOf<Sample>(bin).low);
        }
    });
}

// The first comparison also sends what is no number to 0.
unsigned char ByteMapping::ByteOf(double stored) const {
    const double level = stored * factor_ + offset_;
    return level > 0 ? static_cast<unsigned char>(std::min(level, 255.0) + 0.5) : uint8_t{0};
}

template <class Sample>
void ByteMapping::MapEach(const void* samples, size_t count, unsigned char* bytes) const {
    for (size_t i = 0; i < count; ++i) {
        const auto sample = SampleAt<Sample>(samples, i);
        if constexpr (kIsSmall<Sample>)
            bytes[i] = table_[BinOf(sample)];
        else
            bytes[i] = ByteOf(static_cast<double>(sample));
    }
}

void ByteMapping::Map(const void* samples, size_t count, unsigned char* bytes) const {
    if (type_ == SampleType::Rgb8) {
        std::memcpy(bytes, samples, 3 * count);
        return;
    }
    WithSample(type_, [&](auto sample) { MapEach<decltype(sample)>(samples, count, bytes); });
}

Histogram::Histogram(SampleType type) : type_(type) {
    WithSample(type, [this](auto sample) {
        using Sample = decltype(sample);
        constexpr int kBinBits = kIsSmall<Sample> ? 8 * sizeof(Sample) : 32 - kDroppedBits;
        counts_.resize(size_t{1} << kBinBits);
    });
}

template <class Sample>
void Histogram::CountEach(const void* samples, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto sample = SampleAt<Sample>(samples, i);
        if (!IsCounted(sample)) continue;
        ++counts_[BinOf(sample)];
        ++total_;
        least_ = std::min(least_, static_cast<double>(sample));
        greatest_ = std::max(greatest_, static_cast<double>(sample));
    }
}

void Histogram::Count(const void* samples, size_t count) {
    WithSample(type_, [&](auto sample) { CountEach<decltype(sample)>(samples, count); });
}

std::optional<ValueRange> Histogram::RangeWithout(double part) const {
    if (total_ == 0) return std::nullopt;
    const auto left = static_cast<uint64_t>(static_cast<double>(total_) * part);
    // The first bin, from either end, with more samples up to it than are left out.
    const auto binFrom = [&](auto first, auto last) {
        uint64_t seen = 0;
        return std::find_if(first, last, [&](uint64_t count) { return (seen += count) > left; });
    };
    const auto lowest = static_cast<size_t>(binFrom(counts_.begin(), counts_.end()) - counts_.begin());
    const auto highest = counts_.size() - 1
                         - static_cast<size_t>(binFrom(counts_.rbegin(), counts_.rend()) - counts_.rbegin());
    ValueRange range = {};
    WithSample(type_, [&](auto sample) {
        using Sample = decltype(sample);
        range = {std::max(ValuesOf<Sample>(lowest).low, least_),
                 std::min(ValuesOf<Sample>(highest).high, greatest_)};
    });
    return range;
}

} // namespace z3d::files
