#include "PngSlices.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "Failure.h"
#include "Text.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#define STBI_NO_FAILURE_STRINGS
#define STBI_MAX_DIMENSIONS 32767
#include <stb_image.h>

namespace z3d::files {

namespace {

constexpr uint64_t kLongestFile = uint64_t{1} << 30;

constexpr const char* kNoPicture = "it is damaged, or no PNG picture";

struct PictureKind {
    int width, height;
    SampleType type;

    bool operator==(const PictureKind&) const = default;
};

std::vector<unsigned char> ReadWhole(const std::filesystem::path& path, const FileSystem& files) {
    const std::unique_ptr<ByteStream> stream = files.Open(path);
    const uint64_t size = stream->Size().value_or(0);
    if (size > kLongestFile) Refuse(path, "the picture is larger than a gigabyte");
    std::vector<unsigned char> bytes(static_cast<size_t>(size));
    bytes.resize(stream->Read(bytes.data(), bytes.size()));
    return bytes;
}

uint64_t BigEndian(const std::vector<unsigned char>& bytes, size_t at) {
    uint64_t number = 0;
    for (size_t i = 0; i < 4; ++i)
        number = number << 8 | bytes[at + i];
    return number;
}

// Whether every chunk up to the last one ends within the file: the decoder makes room for a chunk by its length.
bool HoldsItsChunks(const std::vector<unsigned char>& bytes) {
    constexpr size_t kSignature = 8;
    constexpr size_t kBeforeData = 8; // length and kind
    constexpr size_t kAfterData = 4;  // checksum
    for (uint64_t at = kSignature; at + kBeforeData <= bytes.size();) {
        const uint64_t length = BigEndian(bytes, static_cast<size_t>(at));
        if (length > bytes.size() - at - kBeforeData) return false;
        if (std::memcmp(&bytes[static_cast<size_t>(at) + 4], "IEND", 4) == 0) break;
        at += kBeforeData + length + kAfterData;
    }
    return true;
}

// Whether so few bytes can hold so many pixels: no packed byte stands for more than 1032. A header alone must not
// cost gigabytes.
bool IsPlausible(const std::vector<unsigned char>& bytes) {
    constexpr size_t kHeader = 16; // behind the signature and the chunk's length and kind
    constexpr uint64_t kMostPerByte = 1032;
    constexpr unsigned kSamples[] = {1, 0, 3, 1, 2, 0, 4}; // by colour type
    if (bytes.size() < kHeader + 10 || std::memcmp(&bytes[12], "IHDR", 4) != 0) return false;
    const size_t colourType = bytes[kHeader + 9];
    if (colourType >= std::size(kSamples)) return false;
    const uint64_t width = BigEndian(bytes, kHeader);
    const uint64_t height = BigEndian(bytes, kHeader + 4);
    if (width > uint64_t{kLongestAxis} || height > uint64_t{kLongestAxis}) return false;
    const uint64_t rowBits = width * bytes[kHeader + 8] * kSamples[colourType];
    return rowBits / 8 * height <= kMostPerByte * bytes.size();
}

PictureKind KindOf(const std::vector<unsigned char>& bytes, const std::filesystem::path& path) {
    const int length = static_cast<int>(bytes.size());
    PictureKind kind = {};
    int channels = 0;
    if (!IsPlausible(bytes) || !HoldsItsChunks(bytes)) Refuse(path, kNoPicture);
    if (stbi_info_from_memory(bytes.data(), length, &kind.width, &kind.height, &channels) == 0)
        Refuse(path, kNoPicture);
    const bool isWide = stbi_is_16_bit_from_memory(bytes.data(), length) != 0;
    kind.type = channels > 2 ? SampleType::Rgb8 : isWide ? SampleType::Uint16 : SampleType::Uint8;
    return kind;
}

std::string Described(const PictureKind& kind) {
    return Format("%dx%d pixels of %s", kind.width, kind.height, NameOf(kind.type));
}

struct PixelDeleter {
    void operator()(void* pixels) const { stbi_image_free(pixels); }
};
using Pixels = std::unique_ptr<void, PixelDeleter>;

Pixels Decode(const std::vector<unsigned char>& bytes, SampleType type, const std::filesystem::path& path) {
    const int length = static_cast<int>(bytes.size());
    int width = 0, height = 0, channels = 0;
    const int wanted = type == SampleType::Rgb8 ? 3 : 1;
    Pixels pixels;
    if (type == SampleType::Uint16)
        pixels.reset(stbi_load_16_from_memory(bytes.data(), length, &width, &height, &channels, wanted));
    else
        pixels.reset(stbi_load_from_memory(bytes.data(), length, &width, &height, &channels, wanted));
    if (pixels == nullptr) Refuse(path, kNoPicture);
    return pixels;
}

class PngStream : public SampleStream {
public:
    PngStream(const std::vector<std::filesystem::path>& slices, const PictureKind& kind,
              const FileSystem& files)
        : slices_(slices),
          kind_(kind),
          files_(files),
          pictureBytes_(size_t{BytesPerSample(kind.type)} * static_cast<size_t>(kind.width)
                        * static_cast<size_t>(kind.height)),
          at_(pictureBytes_) {}

    void Read(void* samples, size_t count) override {
        auto* out = static_cast<unsigned char*>(samples);
        size_t left = count * BytesPerSample(kind_.type);
        while (left > 0) {
            if (at_ == pictureBytes_) NextPicture();
            const size_t piece = std::min(left, pictureBytes_ - at_);
            std::memcpy(out, static_cast<const unsigned char*>(pixels_.get()) + at_, piece);
            at_ += piece;
            out += piece;
            left -= piece;
        }
    }

private:
    void NextPicture() {
        const std::filesystem::path& path = slices_.at(next_++);
        const std::vector<unsigned char> bytes = ReadWhole(path, files_);
        const PictureKind kind = KindOf(bytes, path);
        if (kind != kind_)
            Refuse(path, "it has " + Described(kind) + ", the first slice " + Described(kind_));
        pixels_.reset();
        pixels_ = Decode(bytes, kind_.type, path);
        at_ = 0;
    }

    const std::vector<std::filesystem::path>& slices_;
    PictureKind kind_;
    const FileSystem& files_;
    size_t pictureBytes_;
    size_t at_;
    size_t next_ = 0;
    Pixels pixels_;
};

class PngVolume : public VolumeFormat {
public:
    PngVolume(const std::vector<std::filesystem::path>& slices, const FileSystem& files)
        : slices_(slices), files_(files), kind_(KindOf(ReadWhole(slices.front(), files), slices.front())) {
        if (slices.size() > size_t{kLongestAxis})
            Refuse(slices.front(), Format("there are more than %d slices", kLongestAxis));
        facts.format = slices.size() == 1 ? "PNG picture" : "PNG slices";
        facts.size = {kind_.width, kind_.height, static_cast<int>(slices.size())};
        facts.type = kind_.type;
        facts.files = slices;
    }

    std::unique_ptr<SampleStream> Start() const override {
        return std::make_unique<PngStream>(slices_, kind_, files_);
    }

private:
    std::vector<std::filesystem::path> slices_;
    const FileSystem& files_;
    PictureKind kind_;
};

} // namespace

bool IsPngStart(std::string_view start) { return start.starts_with("\x89PNG\r\n\x1A\n"); }

std::unique_ptr<VolumeFormat> OpenPngSlices(const std::vector<std::filesystem::path>& slices,
                                            const FileSystem& files) {
    return std::make_unique<PngVolume>(slices, files);
}

} // namespace z3d::files
