// Movable blocks of the platform's global memory: where all pixels live.
//
// A block is known by its handle and has an address only while it is locked. Locks are counted. A block of
// 0 bytes can be had but not locked. On other systems than Windows the same semantics are provided on top of
// the heap, so that the core behaves the same everywhere.
#pragma once

#include <cstdint>

namespace z3d::platform {

using BlockHandle = void*;

// A new unlocked block of zeroes, or null.
BlockHandle BlockAllocate(std::uint32_t bytes);

// The same, its bytes whatever they happen to be: for what is overwritten anyway.
BlockHandle BlockAllocateUnset(std::uint32_t bytes);

// The block's address, which stays the same until the last unlock; null when the block cannot be locked.
void* BlockLock(BlockHandle block);

// The platform's own answer: non-zero while other locks remain, 0 when this was the last one (or on error).
std::int32_t BlockUnlock(BlockHandle block);

// Releases the block whatever its lock count; null is ignored.
void BlockFree(BlockHandle block);

// The block that is locked at this address, or null. The way back from a projection to its handle.
BlockHandle BlockFromAddress(const void* address);

#ifndef _WIN32
// Windows looks a handle up before it works on it; here the exports that stand in for it do. Nothing happens to what is
// no block's handle.
bool IsBlock(BlockHandle handle);

// Of several threads that release one block, one gets true.
bool BlockFreeIfThere(BlockHandle handle);
#endif

} // namespace z3d::platform
