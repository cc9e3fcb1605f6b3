#include "frame/Volume3D.h"

#include "frame/Image2D.h"
#include "platform/Heap.h"

#include <cstddef>
#include <cstring>

namespace z3d::frame {

Volume3D* GlobalAlloc3D(std::uint32_t width, std::uint32_t height, std::uint32_t depth,
                        std::uint32_t bytesPerPixel) {
    auto* volume = static_cast<Volume3D*>(platform::HeapAllocate(sizeof(Volume3D)));
    if (volume == nullptr) return nullptr;
    volume->sliceRows = nullptr;
    volume->width = static_cast<std::uint16_t>(width);
    volume->height = static_cast<std::uint16_t>(height);
    volume->depth = static_cast<std::uint16_t>(depth);

    const std::size_t tableBytes = volume->depth * sizeof(Image2D*);
    volume->slices = static_cast<Image2D**>(platform::HeapAllocate(tableBytes));
    if (volume->slices == nullptr) {
        platform::HeapFree(volume);
        return nullptr;
    }
    std::memset(volume->slices, 0, tableBytes);
    if (bytesPerPixel == 0) return volume;

    for (std::size_t z = 0; z < volume->depth; ++z) {
        volume->slices[z] = GlobalAlloc2D(width, height, bytesPerPixel);
        if (volume->slices[z] == nullptr) {
            GlobalFree3D(volume);
            return nullptr;
        }
    }
    return volume;
}

std::uint8_t*** GlobalLock3D(Volume3D* volume) {
    if (volume == nullptr) return nullptr;
    if (volume->sliceRows != nullptr) return volume->sliceRows;

    const std::size_t tableBytes = volume->depth * sizeof(std::uint8_t**);
    volume->sliceRows = static_cast<std::uint8_t***>(platform::HeapAllocate(tableBytes));
    if (volume->sliceRows == nullptr) return nullptr;
    std::memset(volume->sliceRows, 0, tableBytes);

    for (std::size_t z = 0; z < volume->depth; ++z) {
        volume->sliceRows[z] = GlobalLock2D(volume->slices[z]);
        if (volume->sliceRows[z] == nullptr) {
            GlobalUnlock3D(volume);
            return nullptr;
        }
    }
    return volume->sliceRows;
}

std::int32_t GlobalUnlock3D(Volume3D* volume) {
    std::int32_t result = 1;
    if (volume == nullptr || volume->sliceRows == nullptr) return result;
    for (std::size_t z = 0; z < volume->depth; ++z) {
        if (volume->sliceRows[z] != nullptr && GlobalUnlock2D(volume->slices[z]) == 0) result = 0;
    }
    platform::HeapFree(volume->sliceRows);
    volume->sliceRows = nullptr;
    return result;
}

void FreeSlice(Volume3D* volume, std::size_t z) {
    GlobalFree2D(volume->slices[z]);
    volume->slices[z] = nullptr;
}

void GlobalFree3D(Volume3D* volume) {
    if (volume == nullptr) return;
    if (volume->sliceRows != nullptr) GlobalUnlock3D(volume);
    for (std::size_t z = 0; z < volume->depth; ++z)
        GlobalFree2D(volume->slices[z]);
    platform::HeapFree(volume->slices);
    platform::HeapFree(volume);
}

} // namespace z3d::frame
