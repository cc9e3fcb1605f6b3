#include "PackedSamples.h"

#include <algorithm>
#include <bit>

#include "Text.h"

namespace z3d::files {

namespace {

uint64_t SampleBytes(const VolumeFacts& facts) {
    return uint64_t{BytesPerSample(facts.type)} * static_cast<uint64_t>(facts.size.width)
           * static_cast<uint64_t>(facts.size.height) * static_cast<uint64_t>(facts.size.depth);
}

void SwapBytes(unsigned char* samples, size_t count, size_t bytesEach) {
    for (size_t i = 0; i < count; ++i, samples += bytesEach)
        std::reverse(samples, samples + bytesEach);
}

class PackedStream : public SampleStream {
public:
    PackedStream(std::unique_ptr<ByteStream> bytes, const SamplePlace& place, SampleType type)
        : bytes_(std::move(bytes)),
          path_(place.path),
          bytesEach_(BytesPerSample(type)),
          swapped_(bytesEach_ > 1 && type != SampleType::Rgb8
                   && place.bigEndian != (std::endian::native == std::endian::big)) {}

    void Read(void* samples, size_t count) override {
        if (bytes_->Read(samples, count * bytesEach_) < count * bytesEach_)
            throw FileFailure("cannot read " + Shown(path_) + ": it ends before its last voxel");
        if (swapped_) SwapBytes(static_cast<unsigned char*>(samples), count, bytesEach_);
    }

private:
    std::unique_ptr<ByteStream> bytes_;
    std::filesystem::path path_;
    size_t bytesEach_;
    bool swapped_;
};

class PackedVolume : public VolumeFormat {
public:
    PackedVolume(VolumeFacts theFacts, const SamplePlace& place, const FileSystem& files)
        : place_(place), files_(files) {
        facts = std::move(theFacts);
        if (std::ranges::find(facts.files, place_.path) == facts.files.end())
            facts.files.push_back(place_.path);
        CheckLength();
    }

    std::unique_ptr<SampleStream> Start() const override {
        std::unique_ptr<ByteStream> bytes = Opened();
        if (!bytes->Skip(place_.skip))
            throw FileFailure("cannot read " + Shown(place_.path) + ": it ends before its first voxel");
        return std::make_unique<PackedStream>(std::move(bytes), place_, facts.type);
    }

private:
    std::unique_ptr<ByteStream> Opened() const {
        if (place_.packing == Packing::AsItBegins) return OpenUnpacked(files_, place_.path);
        std::unique_ptr<ByteStream> bytes = files_.Open(place_.path);
        if (!bytes->Skip(place_.start))
            throw FileFailure("cannot read " + Shown(place_.path) + ": it ends before its first voxel");
        if (place_.packing == Packing::None) return bytes;
        return Unpacked(std::move(bytes), place_.path);
    }

    void CheckLength() {
        const std::optional<uint64_t> size = Opened()->Size();
        if (!size) return;
        // Each is below 2^62, so that sums stay within 64 bits.
        const uint64_t before = place_.start + place_.skip;
        const uint64_t voxels = SampleBytes(facts);
        const unsigned int each = BytesPerSample(facts.type);
        const auto number = [](uint64_t value) { return static_cast<unsigned long long>(value); };
        const std::string need = Format("%dx%dx%d voxels of %u byte%s after %llu bytes need %llu",
                                        facts.size.width, facts.size.height, facts.size.depth, each,
                                        each == 1 ? "" : "s", number(before), number(before + voxels));
        const std::string has = Format("it has %llu bytes, ", number(*size));
        if (before + voxels > *size)
            throw FileFailure(Shown(place_.path) + " is too short: " + has + "but " + need);
        if (before + voxels < *size && facts.remark.empty())
            facts.remark =
                Shown(place_.path) + " is longer than its voxels: " + has + need + "; the rest is ignored";
    }

    SamplePlace place_;
    const FileSystem& files_;
};

} // namespace

std::unique_ptr<VolumeFormat> OpenSamples(VolumeFacts facts, const SamplePlace& place,
                                          const FileSystem& files) {
    return std::make_unique<PackedVolume>(std::move(facts), place, files);
}

} // namespace z3d::files
