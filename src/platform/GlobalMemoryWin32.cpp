#include "platform/GlobalMemory.h"

#include "platform/Refusal.h"

#include <cstring>

#include <windows.h>

namespace z3d::platform {
namespace {

BlockHandle Allocate(UINT flags, std::uint32_t bytes) {
    if (IsRefused(Resource::Block)) return nullptr;
    BlockHandle block = GlobalAlloc(flags, bytes);
    if (block != nullptr) NoteGranted(Resource::Block);
    return block;
}

} // namespace

BlockHandle BlockAllocate(std::uint32_t bytes) {
    static_assert((GMEM_MOVEABLE | GMEM_ZEROINIT) == 0x42, "the flags that hosts rely on");
    return Allocate(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
}

BlockHandle BlockAllocateUnset(std::uint32_t bytes) {
    BlockHandle block = Allocate(GMEM_MOVEABLE, bytes);
    if (kSpoilsUnsetMemory && block != nullptr && bytes != 0) {
        std::memset(GlobalLock(block), 0xA5, bytes);
        GlobalUnlock(block);
    }
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
