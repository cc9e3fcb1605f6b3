#include "platform/GlobalMemory.h"

#include "platform/Refusal.h"

#include <cstdlib>
#include <cstring>

#include <pthread.h>

namespace z3d::platform {
namespace {

// The pixels are an allocation of their own, so that memory checkers see every access beyond their ends.
struct Block {
    unsigned char* pixels; // null for a block of 0 bytes
    std::uint32_t lockCount;
    Block* next;
    Block** link; // what points to this block: the first one's, or the field of the block before
};

// Newest first. Only the way back from addresses and handles of a host walks the list: volumes can have tens of
// thousands of slices, and a picture is released soon after it was made.
Block* firstBlock = nullptr;

// Hosts make and release blocks on several threads at the same time. A block itself belongs to one of them.
pthread_mutex_t listMutex = PTHREAD_MUTEX_INITIALIZER;

class ListLock {
public:
    ListLock() { pthread_mutex_lock(&listMutex); }
    ~ListLock() { pthread_mutex_unlock(&listMutex); }
    ListLock(const ListLock&) = delete;
    ListLock& operator=(const ListLock&) = delete;
};

void* AllocateZeroes(std::uint32_t bytes) { return std::calloc(bytes, 1); }

void* AllocateUnset(std::uint32_t bytes) {
    void* pixels = std::malloc(bytes);
    if (kSpoilsUnsetMemory && pixels != nullptr) std::memset(pixels, 0xA5, bytes);
    return pixels;
}

BlockHandle Allocate(void* (*allocatePixels)(std::uint32_t), std::uint32_t bytes) {
    if (IsRefused(Resource::Block)) return nullptr;
    auto* block = static_cast<Block*>(std::malloc(sizeof(Block)));
    if (block == nullptr) return nullptr;
    auto* pixels = bytes == 0 ? nullptr : static_cast<unsigned char*>(allocatePixels(bytes));
    if (bytes != 0 && pixels == nullptr) {
        std::free(block);
        return nullptr;
    }
    {
        const ListLock lock;
        *block = {pixels, 0, firstBlock, &firstBlock};
        if (firstBlock != nullptr) firstBlock->link = &block->next;
        firstBlock = block;
    }
    NoteGranted(Resource::Block);
    return block;
}

// Only while the list is locked.
Block* Find(BlockHandle handle) {
    Block* block = firstBlock;
    while (block != nullptr && block != handle)
        block = block->next;
    return block;
}

// Only while the list is locked.
void Unlink(Block* block) {
    *block->link = block->next;
    if (block->next != nullptr) block->next->link = block->link;
}

void Release(Block* block) {
    NoteReleased(Resource::Block);
    std::free(block->pixels);
    std::free(block);
}

} // namespace

BlockHandle BlockAllocate(std::uint32_t bytes) { return Allocate(AllocateZeroes, bytes); }

BlockHandle BlockAllocateUnset(std::uint32_t bytes) { return Allocate(AllocateUnset, bytes); }

void* BlockLock(BlockHandle block) {
    if (IsRefused(Resource::BlockLock)) return nullptr;
    auto* record = static_cast<Block*>(block);
    if (record == nullptr || record->pixels == nullptr) return nullptr;
    ++record->lockCount;
    NoteGranted(Resource::BlockLock);
    return record->pixels;
}

std::int32_t BlockUnlock(BlockHandle block) {
    auto* record = static_cast<Block*>(block);
    if (record == nullptr || record->lockCount == 0) return 0;
    NoteReleased(Resource::BlockLock);
    --record->lockCount;
    return record->lockCount != 0;
}

void BlockFree(BlockHandle block) {
    if (block == nullptr) return;
    auto* record = static_cast<Block*>(block);
    {
        const ListLock lock;
        Unlink(record);
    }
    Release(record);
}

BlockHandle BlockFromAddress(const void* address) {
    if (address == nullptr) return nullptr; // the pixels of an empty block
    const ListLock lock;
    Block* block = firstBlock;
    while (block != nullptr && block->pixels != address)
        block = block->next;
    return block;
}

bool IsBlock(BlockHandle handle) {
    const ListLock lock;
    return Find(handle) != nullptr;
}

bool BlockFreeIfThere(BlockHandle handle) {
    Block* record;
    {
        const ListLock lock;
        record = Find(handle);
        if (record == nullptr) return false;
        Unlink(record);
    }
    Release(record);
    return true;
}

} // namespace z3d::platform
