// Where tests may refuse what the platform would have granted, and put heap memory where they like. The shipped build
// has no hook: every call below is an inline function, empty but for the ordinary heap.
#pragma once

#include <cstddef>
#include <cstdlib>

namespace z3d::platform {

enum class Resource { Heap, Block, BlockLock, FileOpen, FileRead };

#ifdef Z3D_REFUSABLE
// Implemented by tests/support. True: the request that is about to be made has to fail.
bool IsRefused(Resource resource);
void NoteGranted(Resource resource);
void NoteReleased(Resource resource);
void* AllocateFromHeap(std::size_t bytes);
void FreeToHeap(void* memory);
// Memory that is granted as it happens to be is filled, so that no test passes because it happened to be zero.
constexpr bool kSpoilsUnsetMemory = true;
#else
inline bool IsRefused(Resource) { return false; }
inline void NoteGranted(Resource) {}
inline void NoteReleased(Resource) {}
inline void* AllocateFromHeap(std::size_t bytes) { return std::malloc(bytes); }
inline void FreeToHeap(void* memory) { std::free(memory); }
constexpr bool kSpoilsUnsetMemory = false;
#endif

} // namespace z3d::platform
