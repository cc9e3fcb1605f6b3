#include "volume/RawVolumeLoader.h"

#include "frame/LockedImage.h"
#include "frame/Warning.h"
#include "platform/File.h"
#include "volume/DepthResampling.h"
#include "volume/SliceRange.h"
#include "volume/SliceResampling.h"

#include <cstddef>
#include <cstring>
#include <optional>
#include <utility>

namespace z3d::volume {
namespace {

using frame::Answer;
using frame::OwnedImage;
using frame::OwnedVolume;
using primitives::ValueRange;

bool IsLength(std::int32_t length) { return length >= 1 && length <= UINT16_MAX; }

// An empty stack can stay an empty stack; nothing else can be made of it.
bool CanBeLoaded(const VolumeSize& stored, const VolumeSize& size) {
    if (!IsLength(stored.width) || !IsLength(stored.height)) return false;
    if (!IsLength(size.width) || !IsLength(size.height)) return false;
    if (stored.depth == 0) return size.depth == 0;
    return IsLength(stored.depth) && size.depth >= 0 && size.depth <= UINT16_MAX;
}

// Has the system provide the image's pages. It takes longer to do so when it finds them missing while it reads.
void TouchPages(const frame::LockedImage& image) {
    constexpr std::size_t kPageBytes = 4096;
    for (std::size_t at = 0; at < image.ByteCount(); at += kPageBytes)
        image.Bytes()[at] = 0;
    image.Bytes()[image.ByteCount() - 1] = 0;
}

// One load, up to the resampling in depth.
class SliceReader {
public:
    SliceReader(const RawVolumeFile& stored, const VolumeSize& size, ValueRange& range)
        : stored_(stored), size_(size), range_(range) {
        const bool samePlane = stored.size.width == size.width && stored.size.height == size.height;
        const bool sameDepth = stored.size.depth == size.depth;
        resamplesPlane_ = !samePlane;
        // The resampling in depth is bounded by the range of the file's own samples. Otherwise only the range
        // of what is returned matters, which are the file's samples when nothing is resampled.
        measuresFile_ = !sameDepth || samePlane;
        measuresResult_ = !measuresFile_;
    }

    // The next slice of the file in the result's width and height; null when memory is short.
    OwnedImage Next(platform::File& file) {
        OwnedImage slice = Read(file);
        if (slice && resamplesPlane_) {
            if (!resampler_) {
                resampler_.emplace(primitives::ImageSize{stored_.size.width, stored_.size.height},
                                   primitives::ImageSize{size_.width, size_.height}, slice->bytesPerPixel);
            }
            slice = resampler_->Resample(slice.get());
        }
        if (slice && measuresResult_ && !WidenBySlice(range_, slice.get())) return nullptr;
        return slice;
    }

private:
    OwnedImage Read(platform::File& file) const {
        OwnedImage slice(frame::AllocUnset2D(static_cast<std::uint32_t>(stored_.size.width),
                                             static_cast<std::uint32_t>(stored_.size.height),
                                             stored_.is8bit ? 1 : 4));
        const frame::LockedImage locked(slice.get());
        if (!locked) return nullptr;
        TouchPages(locked);
        // A file that ends early leaves zeroes, and no error.
        const std::size_t got = file.Read(locked.Bytes(), locked.ByteCount());
        std::memset(locked.Bytes() + got, 0, locked.ByteCount() - got);
        if (measuresFile_) WidenByPixels(range_, locked);
        return slice;
    }

    const RawVolumeFile& stored_;
    const VolumeSize& size_;
    ValueRange& range_;
    std::optional<SliceResampler> resampler_; // from the first slice on, where slices are resampled
    bool resamplesPlane_;
    bool measuresFile_;
    bool measuresResult_;
};

// `warning` receives what the user is to be told when there is no volume, once the file is closed and all else
// released.
OwnedVolume ReadVolume(const RawVolumeFile& stored, const VolumeSize& size, ValueRange& range,
                       const frame::Host& host, const char*& warning) {
    platform::File file(stored.name);
    if (!file.IsOpen()) {
        warning = frame::kCannotOpenFile;
        return nullptr;
    }
    if (host.Start() == Answer::Cancel) return nullptr;
    if (!CanBeLoaded(stored.size, size)) return nullptr;

    const std::int32_t depth = stored.size.depth;
    OwnedVolume volume(frame::GlobalAlloc3D(static_cast<std::uint32_t>(size.width),
                                            static_cast<std::uint32_t>(size.height),
                                            static_cast<std::uint32_t>(depth), 0));
    if (!volume) {
        warning = frame::kOutOfMemory;
        return nullptr;
    }
    SliceReader reader(stored, size, range);
    for (std::int32_t z = 0; z < depth; ++z) {
        volume->slices[z] = reader.Next(file).release();
        if (volume->slices[z] == nullptr) {
            warning = frame::kOutOfMemory;
            return nullptr;
        }
        if (host.Progress(z, depth) == Answer::Cancel) return nullptr;
    }
    return volume;
}

} // namespace

OwnedVolume LoadRawVolume(const RawVolumeFile& file, const VolumeSize& size, ValueRange& running,
                          ValueRange& volumeRange, const frame::Host& host) {
    volumeRange = ValueRange();
    const char* warning = nullptr;
    OwnedVolume volume = ReadVolume(file, size, volumeRange, host, warning);
    if (!volume) {
        if (warning != nullptr) host.Warn(warning);
        return nullptr;
    }
    if (file.size.depth != size.depth) {
        const ValueRange bounds = volumeRange;
        volume = ResampleDepth(*volume, size.depth, bounds, volumeRange, host);
        if (!volume) return nullptr;
        if (volume->depth == 0) return volume;
    }
    // Whatever widens the volume's own range from its start widens the running one.
    running.Widen(volumeRange);
    return volume;
}

} // namespace z3d::volume
