#include "volume/SliceResampling.h"

#include "frame/LockedImage.h"
#include "primitives/Resize.h"
#include "primitives/ResizeAxis.h"

#include <cstddef>
#include <cstring>

namespace z3d::volume {
namespace {

using primitives::ImageSize;

ImageSize SizeOf(const Image2D& image) { return {image.width, image.height}; }

std::int32_t RowBytes(const Image2D& image) {
    return image.width * static_cast<std::int32_t>(image.bytesPerPixel);
}

double Factor(std::int32_t length, std::int32_t newLength) { return static_cast<double>(newLength) / length; }

// The resize leaves some columns at the right and some rows at the bottom as they are.
std::int32_t WrittenLength(std::int32_t length, std::int32_t newLength) {
    return primitives::Axis::Make(length, 1, length, newLength, Factor(length, newLength)).written;
}

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

frame::OwnedImage ResampleSlice(Image2D* source, std::int32_t newWidth, std::int32_t newHeight) {
    frame::OwnedImage result(frame::AllocUnset2D(
        static_cast<std::uint32_t>(newWidth), static_cast<std::uint32_t>(newHeight), source->bytesPerPixel));
    if (!result) return nullptr;
    const frame::LockedImage to(result.get());
    const frame::LockedImage from(source);
    if (!to || !from) return nullptr;

    const ImageSize size = SizeOf(*source);
    const ImageSize newSize = SizeOf(*result);
    const double xFactor = Factor(size.width, newSize.width);
    const double yFactor = Factor(size.height, newSize.height);
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
    if (status == primitives::StatusMemoryError) return nullptr;
    // A source of one column or row lies outside its rectangle: then nothing is written.
    const bool isWritten = status == primitives::StatusNoError;
    ClearUnwritten(to, newSize, isWritten ? WrittenLength(size.width, newSize.width) : 0,
                   isWritten ? WrittenLength(size.height, newSize.height) : 0);
    return result;
}

} // namespace z3d::volume
