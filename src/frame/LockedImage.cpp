#include "frame/LockedImage.h"

#include "platform/GlobalMemory.h"

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
    pixels_ = static_cast<std::uint8_t*>(platform::BlockLock(image->mem));
}

LockedImage::~LockedImage() {
    if (pixels_ != nullptr) platform::BlockUnlock(image_->mem);
}

} // namespace z3d::frame
