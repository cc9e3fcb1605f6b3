// What a host takes of KERNEL32 to release a picture, over the POSIX side of the platform door.
#include "platform/GlobalMemory.h"

#include <cstdint>

extern "C" {

void* GlobalHandle(const void* address) { return z3d::platform::BlockFromAddress(address); }

std::int32_t GlobalUnlock(void* block) { return z3d::platform::BlockUnlock(block); }

void* GlobalFree(void* block) {
    z3d::platform::BlockFree(block);
    return nullptr;
}

} // extern "C"
