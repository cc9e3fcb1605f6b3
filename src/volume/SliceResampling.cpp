#include "volume/SliceResampling.h"

#include "frame/LockedImage.h"
#include "primitives/Resize.h"

namespace z3d::volume {
namespace {

using primitives::ImageSize;

ImageSize SizeOf(const Image2D& image) { return {image.width, image.height}; }

std::int32_t RowBytes(const Image2D& image) {
    return image.width * static_cast<std::int32_t>(image.bytesPerPixel);
}

} // namespace

frame::OwnedImage ResampleSlice(Image2D* source, std::int32_t newWidth, std::int32_t newHeight) {
    frame::OwnedImage result(frame::GlobalAlloc2D(
        static_cast<std::uint32_t>(newWidth), static_cast<std::uint32_t>(newHeight), source->bytesPerPixel));
    if (!result) return nullptr;
    const frame::LockedImage to(result.get());
    const frame::LockedImage from(source);
    if (!to || !from) return nullptr;

    const ImageSize size = SizeOf(*source);
    const ImageSize newSize = SizeOf(*result);
    const double xFactor = static_cast<double>(newSize.width) / size.width;
    const double yFactor = static_cast<double>(newSize.height) / size.height;
    // One column and one row in; the resize limits the rectangle to the image.
    const primitives::ImageRect rectangle = {1, 1, size.width, size.height};

    primitives::Status status;
    if (source->bytesPerPixel == 4) {
        status = primitives::Resize32fC1(from.Floats(), size, RowBytes(*source), rectangle, to.Floats(),
                                         RowBytes(*result), newSize, xFactor, yFactor, primitives::kBilinear);
    } else {
        status = primitives::Resize8uC1(from.Bytes(), size, size.width, rectangle, to.Bytes(), newSize.width,
                                        newSize, xFactor, yFactor, primitives::kBilinear);
    }
    // A source of one column or row lies outside its rectangle: then the result stays zero.
    if (status == primitives::StatusMemoryError) return nullptr;
    return result;
}

} // namespace z3d::volume
