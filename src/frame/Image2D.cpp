#include "frame/Image2D.h"

#include "platform/GlobalMemory.h"
#include "platform/Heap.h"

#include <cstddef>
#include <cstring>

namespace z3d::frame {
namespace {

Image2D* Alloc2D(platform::BlockHandle (*allocate)(std::uint32_t), std::uint32_t width, std::uint32_t height,
                 std::uint32_t bytesPerPixel) {
    auto* image = static_cast<Image2D*>(platform::HeapAllocate(sizeof(Image2D)));
    if (image == nullptr) return nullptr;
    image->rows = nullptr;
    image->width = static_cast<std::uint16_t>(width);
    image->height = static_cast<std::uint16_t>(height);
    image->bytesPerPixel = bytesPerPixel;

    // The product wraps at 32 bits, as hosts know it; whoever reads pixels checks that it did not.
    const std::uint32_t bytes = std::uint32_t{image->width} * image->height * bytesPerPixel;
    image->mem = allocate(bytes);
    if (image->mem == nullptr) {
        platform::HeapFree(image);
        return nullptr;
    }
    return image;
}

} // namespace

Image2D* GlobalAlloc2D(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerPixel) {
    return Alloc2D(platform::BlockAllocate, width, height, bytesPerPixel);
}

Image2D* AllocUnset2D(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerPixel) {
    return Alloc2D(platform::BlockAllocateUnset, width, height, bytesPerPixel);
}

std::uint8_t** GlobalLock2D(Image2D* image) {
    if (image == nullptr) return nullptr;
    if (image->rows != nullptr) return image->rows;

    const std::size_t tableBytes = image->height * sizeof(std::uint8_t*);
    image->rows = static_cast<std::uint8_t**>(platform::HeapAllocate(tableBytes));
    if (image->rows == nullptr) return nullptr;
    std::memset(image->rows, 0, tableBytes);

    // On failure the table of null rows stays with the handle: a later lock returns it as it stands.
    void* pixels = platform::BlockLock(image->mem);
    if (pixels == nullptr) return nullptr;
    // Where the byte count wrapped, rows lie outside the block: computed as numbers, not as pointers into it.
    const auto base = reinterpret_cast<std::uintptr_t>(pixels);
    const std::size_t rowBytes = std::size_t{image->width} * image->bytesPerPixel;
    for (std::size_t y = 0; y < image->height; ++y)
        image->rows[y] = reinterpret_cast<std::uint8_t*>(base + y * rowBytes);
    return image->rows;
}

std::int32_t GlobalUnlock2D(Image2D* image) {
    if (image == nullptr || image->rows == nullptr) return 0;
    platform::HeapFree(image->rows);
    image->rows = nullptr;
    return platform::BlockUnlock(image->mem);
}

void GlobalFree2D(Image2D* image) {
    if (image == nullptr) return;
    if (image->rows != nullptr) GlobalUnlock2D(image);
    platform::BlockFree(image->mem);
    platform::HeapFree(image);
}

} // namespace z3d::frame
