#include "frame/LockedImage.h"

namespace z3d::frame {
namespace {

// The block was allocated by the 32-bit product, which may have wrapped.
bool HasWholeBlock(const Image2D& image) {
    const std::uint64_t pixels = std::uint64_t{image.width} * image.height;
    const std::uint64_t bytes = pixels * image.bytesPerPixel;
    return bytes != 0 && bytes <= UINT32_MAX;
}

} // namespace

LockedImage::LockedImage(Image2D* image) : image_(image) {
    if (image == nullptr || !HasWholeBlock(*image)) return;
    std::uint8_t** rows = GlobalLock2D(image);
    // An earlier failed lock leaves a table of null rows behind.
    if (rows != nullptr) pixels_ = rows[0];
}

} // namespace z3d::frame
