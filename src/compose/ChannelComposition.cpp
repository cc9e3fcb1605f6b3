#include "compose/ChannelComposition.h"

#include "compose/ChannelKernels.h"
#include "frame/LockedImage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace z3d::compose {
namespace {

using primitives::ValueRange;

// The smallest of each among the channels that are there.
struct CommonVolumeSize {
    std::int32_t width = INT32_MAX;
    std::int32_t height = INT32_MAX;
    std::int32_t depth = INT32_MAX;

    void Include(const Volume3D* volume) {
        if (volume == nullptr) return;
        width = std::min<std::int32_t>(width, volume->width);
        height = std::min<std::int32_t>(height, volume->height);
        depth = std::min<std::int32_t>(depth, volume->depth);
    }
};

struct CommonImageFormat {
    std::uint32_t width = INT32_MAX;
    std::uint32_t height = INT32_MAX;
    std::uint32_t bytesPerPixel = UINT32_MAX;

    void Include(const Image2D* image) {
        if (image == nullptr) return;
        width = std::min<std::uint32_t>(width, image->width);
        height = std::min<std::uint32_t>(height, image->height);
        bytesPerPixel = std::min(bytesPerPixel, image->bytesPerPixel);
    }
};

Image2D* SliceOf(Volume3D* volume, std::size_t z) { return volume != nullptr ? volume->slices[z] : nullptr; }

void Consume(Volume3D* volume, std::size_t z) {
    if (volume != nullptr) frame::FreeSlice(volume, z);
}

// A missing channel is not locked; one that is there has to be.
bool IsReady(const Image2D* image, const frame::LockedImage& locked) { return image == nullptr || locked; }

} // namespace

frame::OwnedImage ComposeSlice(const ChannelImages& channels, const ValueRange& range, ValueRange& display) {
    CommonImageFormat format;
    format.Include(channels.red);
    format.Include(channels.green);
    format.Include(channels.blue);
    if (format.bytesPerPixel != 1 && format.bytesPerPixel != 4) return nullptr;

    frame::OwnedImage image(frame::AllocUnset2D(format.width, format.height, 3));
    const frame::LockedImage to(image.get());
    const frame::LockedImage red(channels.red);
    const frame::LockedImage green(channels.green);
    const frame::LockedImage blue(channels.blue);
    if (!to || !IsReady(channels.red, red) || !IsReady(channels.green, green)
        || !IsReady(channels.blue, blue)) {
        return nullptr;
    }

    const bool composed = format.bytesPerPixel == 4
                              ? ComposeFloats({red.Floats(), green.Floats(), blue.Floats()}, to.Bytes(),
                                              to.PixelCount(), range, display)
                              : ComposeBytes({red.Bytes(), green.Bytes(), blue.Bytes()}, to.Bytes(),
                                             to.PixelCount(), range, display);
    if (!composed) return nullptr;
    return image;
}

frame::OwnedVolume ComposeVolumes(const ChannelVolumes& channels, const ValueRange& range,
                                  ValueRange& display, const frame::Host& host) {
    CommonVolumeSize size;
    size.Include(channels.red);
    size.Include(channels.green);
    size.Include(channels.blue);
    frame::OwnedVolume result(frame::GlobalAlloc3D(static_cast<std::uint32_t>(size.width),
                                                   static_cast<std::uint32_t>(size.height),
                                                   static_cast<std::uint32_t>(size.depth), 0));
    if (!result) return nullptr;

    display = ValueRange();
    for (std::int32_t z = 0; z < size.depth; ++z) {
        if (host.Progress(z, size.depth) == frame::Answer::Cancel) return nullptr;
        const auto slot = static_cast<std::size_t>(z);
        const ChannelImages images = {SliceOf(channels.red, slot), SliceOf(channels.green, slot),
                                      SliceOf(channels.blue, slot)};
        result->slices[slot] = ComposeSlice(images, range, display).release();
        Consume(channels.red, slot);
        Consume(channels.green, slot);
        Consume(channels.blue, slot);
        if (result->slices[slot] == nullptr) return nullptr;
    }
    return result;
}

} // namespace z3d::compose
