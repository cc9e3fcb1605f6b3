#include "VolumeReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>

#include "Failure.h"
#include "Resampler.h"
#include "Samples.h"
#include "Text.h"
#include "VolumeFormat.h"

namespace z3d::files {

namespace {

constexpr double kLeftOut = 0.005;      // at each end of a histogram
constexpr double kEqualSpacings = 1.01; // up to that ratio voxels count as cubes
constexpr size_t kSamplesAtOnce = 32768;

size_t SamplesPerSlice(const VolumeSize& size) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
}

// Tells the caller about every 200th part, and ends the work when it does not go on.
class Reporter {
public:
    Reporter(const Progress& progress, uint64_t all) : progress_(progress), all_(all) {}

    void Done(uint64_t more) {
        done_ += more;
        if (!progress_ || (done_ - reported_) * kParts < all_) return;
        reported_ = done_;
        if (!progress_(static_cast<double>(done_) / static_cast<double>(all_))) throw Cancelled();
    }

private:
    static constexpr uint64_t kParts = 200;

    const Progress& progress_;
    uint64_t all_;
    uint64_t done_ = 0;
    uint64_t reported_ = 0;
};

// Hands out samples in pieces, so that a header that promises too much costs no memory.
class PieceReader {
public:
    PieceReader(const VolumeFormat& format, const Progress& progress)
        : stream_(format.Start()),
          buffer_(kSamplesAtOnce * BytesPerSample(format.facts.type)),
          reporter_(progress,
                    SamplesPerSlice(format.facts.size) * static_cast<uint64_t>(format.facts.size.depth)) {}

    // Calls `use` with pieces of the next slice and the number of samples before them.
    template <class Use>
    void Slice(size_t samples, const Use& use) {
        for (size_t at = 0; at < samples; at += kSamplesAtOnce) {
            const size_t count = std::min(samples - at, kSamplesAtOnce);
            stream_->Read(buffer_.data(), count);
            use(buffer_.data(), count, at);
            reporter_.Done(count);
        }
    }

private:
    std::unique_ptr<SampleStream> stream_;
    std::vector<unsigned char> buffer_;
    Reporter reporter_;
};

std::array<double, 3> LengthsInCubes(const VolumeFacts& facts, FitRequest::Cubes cubes) {
    std::array<double, 3> lengths = {1.0 * facts.size.width, 1.0 * facts.size.height, 1.0 * facts.size.depth};
    const std::array<double, 3> spacing = {facts.spacing.x, facts.spacing.y, facts.spacing.z};
    const auto [finest, widest] = std::ranges::minmax(spacing);
    const bool areCubes = widest <= finest * (cubes == FitRequest::Cubes::Always ? 1 : kEqualSpacings);
    if (cubes == FitRequest::Cubes::Never || areCubes) return lengths;
    for (size_t axis = 0; axis < 3; ++axis)
        lengths[axis] = std::max(1.0, std::round(lengths[axis] * (spacing[axis] / finest)));
    return lengths;
}

double DiagonalOf(const std::array<double, 3>& lengths) {
    return std::hypot(lengths[0], lengths[1], lengths[2]);
}

ValueRange ValuesOf(const VolumeFacts& facts, const ValueRange& stored) {
    const double a = stored.low * facts.slope + facts.intercept;
    const double b = stored.high * facts.slope + facts.intercept;
    return {std::min(a, b), std::max(a, b)};
}

FileFailure NoMemoryFor(const VolumeSize& size, uint64_t bytes) {
    return FileFailure(Format("not enough memory to read a volume of %dx%dx%d voxels (%s bytes)", size.width,
                              size.height, size.depth, Grouped(bytes).c_str()));
}

// One value everywhere, as a file's scale may also bring all to the same: between nothing and it.
ValueRange NotEmpty(const ValueRange& values) {
    if (values.low < values.high) return values;
    const double value = values.low;
    return value == 0 ? ValueRange{0, 1} : ValueRange{std::min(value, 0.0), std::max(value, 0.0)};
}

} // namespace

uint64_t Fitted::ByteCount() const {
    return uint64_t{BytesPerVoxel(type)} * static_cast<uint64_t>(size.width)
           * static_cast<uint64_t>(size.height) * static_cast<uint64_t>(size.depth);
}

int ProposedDiagonal(const Fitted& fitted) {
    constexpr double kComfortableBytes = 256.0 * 1024 * 1024;
    const double diagonal =
        DiagonalOf({1.0 * fitted.size.width, 1.0 * fitted.size.height, 1.0 * fitted.size.depth});
    const double shrunk =
        diagonal * std::min(1.0, std::cbrt(kComfortableBytes / static_cast<double>(fitted.ByteCount())));
    // Two digits are easier to type.
    const double unit = std::pow(10.0, std::max(0.0, std::floor(std::log10(shrunk)) - 1));
    return std::max(1, static_cast<int>(std::floor(shrunk / unit) * unit));
}

VolumeReader::VolumeReader(const VolumeSource& source) : VolumeReader(source, Disk()) {}
VolumeReader::VolumeReader(const VolumeSource& source, const FileSystem& files)
    : format_(OpenVolume(source, files)) {}
VolumeReader::~VolumeReader() = default;
VolumeReader::VolumeReader(VolumeReader&&) noexcept = default;
VolumeReader& VolumeReader::operator=(VolumeReader&&) noexcept = default;

const VolumeFacts& VolumeReader::Facts() const { return format_->facts; }

Fitted VolumeReader::Fit(const FitRequest& request) const {
    const VolumeFacts& facts = Facts();
    std::array<double, 3> lengths = LengthsInCubes(facts, request.cubes);
    // The rule of GetRGBImage: cut off to whole voxels, at least 1.
    const double diagonal = DiagonalOf(lengths);
    if (request.maxDiagonal > 0 && diagonal > request.maxDiagonal)
        for (double& length : lengths)
            length = std::max(1.0, std::trunc(length * request.maxDiagonal / diagonal));
    for (const double length : lengths)
        if (!(length <= kLongestAxis))
            throw FileFailure(
                Format("%dx%dx%d voxels would become %.0fx%.0fx%.0f cubes, more than %d along an axis",
                       facts.size.width, facts.size.height, facts.size.depth, lengths[0], lengths[1],
                       lengths[2], kLongestAxis));
    Fitted fitted = {};
    fitted.size = {static_cast<int>(lengths[0]), static_cast<int>(lengths[1]), static_cast<int>(lengths[2])};
    fitted.type = facts.type == SampleType::Rgb8 ? VoxelType::Rgb8 : VoxelType::Grey8;
    fitted.resampled = fitted.size != facts.size;
    return fitted;
}

ValueRange VolumeReader::ProposedInput(const Progress& progress) const {
    const SampleType type = Facts().type;
    if (type == SampleType::Rgb8) return {0, 255};
    if (type == SampleType::Uint8) return NotEmpty(ValuesOf(Facts(), {0, 255}));
    return Percentiles(progress);
}

ValueRange VolumeReader::Percentiles(const Progress& progress) const {
    const VolumeFacts& facts = Facts();
    if (facts.type == SampleType::Rgb8) throw FileFailure("colours have no range of values");
    Histogram histogram(facts.type);
    PieceReader pieces(*format_, progress);
    for (int z = 0; z < facts.size.depth; ++z)
        pieces.Slice(SamplesPerSlice(facts.size),
                     [&](const void* samples, size_t count, size_t) { histogram.Count(samples, count); });
    std::optional<ValueRange> range = histogram.RangeWithout(kLeftOut);
    if (!range) Refuse(facts.files.back(), "no voxel holds a number");
    if (range->low == range->high) range = histogram.RangeWithout(0);
    return NotEmpty(ValuesOf(facts, *range));
}

void VolumeReader::Read(const Fitted& fitted, const ValueRange& input, const SliceSink& sink,
                        const Progress& progress) const try {
    const VolumeFacts& facts = Facts();
    const ByteMapping mapping(facts, input);
    const size_t samples = SamplesPerSlice(facts.size);
    const size_t bytesEach = BytesPerVoxel(fitted.type);
    PieceReader pieces(*format_, progress);
    std::optional<Resampler> resampler;
    std::vector<unsigned char> slice;
    if (fitted.resampled) {
        resampler.emplace(facts.size, fitted.size, BytesPerVoxel(fitted.type), sink);
        slice.resize(samples * bytesEach);
    }
    for (int z = 0; z < facts.size.depth; ++z) {
        unsigned char* const bytes = resampler ? slice.data() : sink(z);
        pieces.Slice(samples, [&](const void* piece, size_t count, size_t before) {
            mapping.Map(piece, count, bytes + before * bytesEach);
        });
        if (resampler) resampler->Push(bytes);
    }
} catch (const std::bad_alloc&) {
    throw NoMemoryFor(fitted.size, fitted.ByteCount());
} catch (const std::length_error&) {
    throw NoMemoryFor(fitted.size, fitted.ByteCount());
}

} // namespace z3d::files
