// An image's pixels for the time of a scope.
#pragma once

#include "frame/Image2D.h"

#include <cstddef>
#include <cstdint>

namespace z3d::frame {

// Locks the image's block, without a table of rows, and unlocks it in every case. Empty when the image is null or
// has no pixels, cannot be locked, or claims more bytes than its block holds. Locks are counted: others of the same
// image are left alone.
class LockedImage {
public:
    explicit LockedImage(Image2D* image);
    ~LockedImage();
    LockedImage(const LockedImage&) = delete;
    LockedImage& operator=(const LockedImage&) = delete;

    explicit operator bool() const { return pixels_ != nullptr; }

    // The whole block: rows follow each other without padding.
    std::uint8_t* Bytes() const { return pixels_; }
    // The same, of an image of 4 bytes per pixel.
    float* Floats() const { return reinterpret_cast<float*>(pixels_); }

    std::size_t PixelCount() const { return std::size_t{image_->width} * image_->height; }
    std::uint32_t BytesPerPixel() const { return image_->bytesPerPixel; }
    std::size_t ByteCount() const { return PixelCount() * image_->bytesPerPixel; }

private:
    Image2D* image_;
    std::uint8_t* pixels_ = nullptr;
};

} // namespace z3d::frame
