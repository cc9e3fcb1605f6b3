#include "exports/HostSide.h"
#include "exports/Library.h"
#include "exports/linux/PictureRelease.h"

#include <malloc.h>

namespace z3d::test {
namespace {

template <class Function>
Function Named(const char* name) {
    return reinterpret_cast<Function>(const_cast<void*>(AddressOf(name)));
}

} // namespace

const PictureRelease& ThePictureRelease() {
    static const PictureRelease release = {
        Named<decltype(&::GlobalHandle)>("GlobalHandle"),
        Named<decltype(&::GlobalUnlock)>("GlobalUnlock"),
        Named<decltype(&::GlobalFree)>("GlobalFree"),
    };
    return release;
}

const void* HandleOf(const void* pixels) { return ThePictureRelease().GlobalHandle(pixels); }

bool IsBlockOf(const void* pixels, std::size_t bytes) {
    // A request is rounded up to a multiple of 16 bytes, or of pages of 4096, with 24 bytes at least.
    const std::size_t usable = malloc_usable_size(const_cast<void*>(pixels));
    return usable >= bytes && usable < bytes + 4096 + 24;
}

bool ReleaseProjection(float* pixels) {
    const PictureRelease& release = ThePictureRelease();
    void* block = release.GlobalHandle(pixels);
    if (block == nullptr || release.GlobalUnlock(block) != 0) return false;
    return release.GlobalFree(block) == nullptr && release.GlobalHandle(pixels) == nullptr;
}

// One would end the program: nobody here handles its signal.
int ExceptionsRaised() { return 0; }

} // namespace z3d::test
