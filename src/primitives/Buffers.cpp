#include "primitives/Buffers.h"

#include "platform/Heap.h"

#include <cstddef>
#include <cstring>

namespace z3d::primitives {
namespace {

constexpr std::size_t kAlignment = 32;

// Room to move the start up to a boundary, and for the heap block's own address just before it.
constexpr std::size_t kExtraBytes = kAlignment + sizeof(void*);

void* AllocateAligned(std::uint64_t bytes) {
    if (bytes > UINT32_MAX - kExtraBytes) return nullptr;
    void* block = platform::HeapAllocate(static_cast<std::size_t>(bytes) + kExtraBytes);
    if (block == nullptr) return nullptr;

    // The first boundary that leaves room for the address.
    std::uint8_t* start = static_cast<std::uint8_t*>(block) + sizeof block;
    const std::size_t misalignment = reinterpret_cast<std::uintptr_t>(start) % kAlignment;
    if (misalignment != 0) start += kAlignment - misalignment;

    std::memcpy(start - sizeof block, &block, sizeof block);
    return start;
}

void FreeAligned(void* start) {
    if (start == nullptr) return;
    void* block;
    std::memcpy(&block, static_cast<std::uint8_t*>(start) - sizeof block, sizeof block);
    platform::HeapFree(block);
}

void* AllocateImage(std::int32_t width, std::int32_t height, std::uint32_t pixelBytes, std::int32_t* step) {
    if (step == nullptr) return nullptr;
    *step = 0;
    if (width < 1 || height < 1) return nullptr;

    const std::uint64_t rowBytes = static_cast<std::uint64_t>(width) * pixelBytes;
    const std::uint64_t stepBytes = (rowBytes + kAlignment - 1) / kAlignment * kAlignment;
    if (stepBytes > INT32_MAX) return nullptr;
    void* image = AllocateAligned(stepBytes * static_cast<std::uint64_t>(height));
    if (image != nullptr) *step = static_cast<std::int32_t>(stepBytes);
    return image;
}

} // namespace

float* VecMalloc32f(std::int32_t length) {
    if (length < 1) return nullptr;
    return static_cast<float*>(AllocateAligned(static_cast<std::uint64_t>(length) * sizeof(float)));
}

void VecFree(float* vector) { FreeAligned(vector); }

std::uint8_t* ImageMalloc8uC1(std::int32_t width, std::int32_t height, std::int32_t* step) {
    return static_cast<std::uint8_t*>(AllocateImage(width, height, 1, step));
}

std::uint8_t* ImageMalloc8uC3(std::int32_t width, std::int32_t height, std::int32_t* step) {
    return static_cast<std::uint8_t*>(AllocateImage(width, height, 3, step));
}

float* ImageMalloc32fC1(std::int32_t width, std::int32_t height, std::int32_t* step) {
    return static_cast<float*>(AllocateImage(width, height, 4, step));
}

float* ImageMalloc32fC3(std::int32_t width, std::int32_t height, std::int32_t* step) {
    return static_cast<float*>(AllocateImage(width, height, 12, step));
}

void ImageFree(void* image) { FreeAligned(image); }

} // namespace z3d::primitives
