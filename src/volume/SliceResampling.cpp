#include "volume/SliceResampling.h"

#include <cstddef>
#include <cstring>

namespace z3d::volume {
namespace {

using primitives::Axis;
using primitives::ImageSize;

// One pixel in; the axis ends with the slice.
Axis AxisOf(std::int32_t length, std::int32_t newLength) {
    return Axis::Make(length, 1, length, newLength, static_cast<double>(newLength) / length);
}

// All but the first columns of the first rows.
void ClearUnwritten(const frame::LockedImage& image, ImageSize size, std::int32_t columns,
                    std::int32_t rows) {
    const std::size_t rowBytes = static_cast<std::size_t>(size.width) * image.BytesPerPixel();
    const std::size_t written = static_cast<std::size_t>(columns) * image.BytesPerPixel();
    std::uint8_t* row = image.Bytes();
    for (std::int32_t y = 0; y < rows; ++y, row += rowBytes)
        std::memset(row + written, 0, rowBytes - written);
    std::memset(row, 0, static_cast<std::size_t>(size.height - rows) * rowBytes);
}

} // namespace

SliceResampler::SliceResampler(ImageSize size, ImageSize newSize, std::uint32_t bytesPerPixel)
    : size_(size), newSize_(newSize), bytesPerPixel_(bytesPerPixel), columns_(), rows_() {
    if (size.width < 2 || size.height < 2) return;
    columns_ = AxisOf(size.width, newSize.width);
    rows_ = AxisOf(size.height, newSize.height);
    if (bytesPerPixel == 4) {
        floats_.emplace(columns_, rows_);
    } else {
        bytes_.emplace(columns_, rows_);
    }
}

template <class Passes>
void SliceResampler::RunOn(std::optional<primitives::BilinearResize<Passes>>& resize,
                           const frame::LockedImage& from, const frame::LockedImage& to) {
    const auto pixelBytes = static_cast<std::int32_t>(bytesPerPixel_);
    if (resize) resize->Run(from.Bytes(), size_.width * pixelBytes, to.Bytes(), newSize_.width * pixelBytes);
}

frame::OwnedImage SliceResampler::Resample(Image2D* slice) {
    if ((bytes_ && !*bytes_) || (floats_ && !*floats_)) return nullptr;
    frame::OwnedImage result(frame::AllocUnset2D(static_cast<std::uint32_t>(newSize_.width),
                                                 static_cast<std::uint32_t>(newSize_.height),
                                                 bytesPerPixel_));
    const frame::LockedImage to(result.get());
    const frame::LockedImage from(slice);
    if (!to || !from) return nullptr;

    RunOn(bytes_, from, to);
    RunOn(floats_, from, to);
    ClearUnwritten(to, newSize_, columns_.written, rows_.written);
    return result;
}

} // namespace z3d::volume
