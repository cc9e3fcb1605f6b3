#include "platform/GlobalMemory.h"

#include "platform/Refusal.h"

#include <cstdlib>
#include <cstring>

namespace z3d::platform {
namespace {

// The pixels are an allocation of their own, so that memory checkers see every access beyond their ends.
struct Block {
    unsigned char* pixels; // null for a block of 0 bytes
    std::uint32_t lockCount;
    Block* next;
    Block** link; // what points to this block: the first one's, or the field of the block before
};

// Newest first. Only BlockFromAddress walks the list: volumes can have tens of thousands of slices.
Block* firstBlock = nullptr;

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
    *block = {pixels, 0, firstBlock, &firstBlock};
    if (firstBlock != nullptr) firstBlock->link = &block->next;
    firstBlock = block;
    NoteGranted(Resource::Block);
    return block;
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
    NoteReleased(Resource::Block);
    auto* record = static_cast<Block*>(block);
    *record->link = record->next;
    if (record->next != nullptr) record->next->link = record->link;
    std::free(record->pixels);
    std::free(record);
}

BlockHandle BlockFromAddress(const void* address) {
    Block* block = firstBlock;
    while (block != nullptr && block->pixels != address)
        block = block->next;
    return block;
}

} // namespace z3d::platform
