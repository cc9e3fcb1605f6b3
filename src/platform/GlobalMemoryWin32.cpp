#include "platform/GlobalMemory.h"

#include "platform/Refusal.h"

#include <windows.h>

namespace z3d::platform {

BlockHandle BlockAllocate(std::uint32_t bytes) {
    static_assert((GMEM_MOVEABLE | GMEM_ZEROINIT) == 0x42, "the flags that hosts rely on");
    if (IsRefused(Resource::Block)) return nullptr;
    BlockHandle block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
    if (block != nullptr) NoteGranted(Resource::Block);
    return block;
}

void* BlockLock(BlockHandle block) {
    if (IsRefused(Resource::BlockLock)) return nullptr;
    void* address = GlobalLock(block);
    if (address != nullptr) NoteGranted(Resource::BlockLock);
    return address;
}

std::int32_t BlockUnlock(BlockHandle block) {
    const BOOL isStillLocked = GlobalUnlock(block);
    const bool wasLocked = isStillLocked || GetLastError() == NO_ERROR;
    if (wasLocked) NoteReleased(Resource::BlockLock);
    return isStillLocked;
}

void BlockFree(BlockHandle block) {
    if (block == nullptr) return;
    NoteReleased(Resource::Block);
    GlobalFree(block);
}

BlockHandle BlockFromAddress(const void* address) { return GlobalHandle(address); }

} // namespace z3d::platform
