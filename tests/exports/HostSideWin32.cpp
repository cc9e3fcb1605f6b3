#include "exports/HostSide.h"

#include <windows.h>

namespace z3d::test {

bool IsBlockOf(const void* pixels, std::size_t bytes) { return GlobalSize(GlobalHandle(pixels)) == bytes; }

const void* HandleOf(const void* pixels) { return GlobalHandle(pixels); }

bool ReleaseProjection(float* pixels) {
    const HGLOBAL block = GlobalHandle(pixels);
    if (block == nullptr || (GlobalFlags(block) & GMEM_LOCKCOUNT) != 1) return false;
    return GlobalUnlock(block) == 0 && GetLastError() == NO_ERROR && GlobalFree(block) == nullptr;
}

} // namespace z3d::test
