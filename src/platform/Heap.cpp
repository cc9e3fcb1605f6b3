#include "platform/Heap.h"

#include "platform/Refusal.h"

#include <cstdint>

namespace z3d::platform {

void* HeapAllocate(std::size_t bytes) {
    if (IsRefused(Resource::Heap)) return nullptr;
    // No block is larger; not every allocator takes being asked for one well.
    if (bytes > PTRDIFF_MAX) return nullptr;
    void* memory = AllocateFromHeap(bytes == 0 ? 1 : bytes);
    if (memory != nullptr) NoteGranted(Resource::Heap);
    return memory;
}

void HeapFree(void* memory) {
    if (memory == nullptr) return;
    NoteReleased(Resource::Heap);
    FreeToHeap(memory);
}

} // namespace z3d::platform
