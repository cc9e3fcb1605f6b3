#include "exports/HeapUse.h"

#include <windows.h>

namespace z3d::test {

HeapUse MeasureHeaps() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    HeapUse use;
    for (DWORD index = 0; index < count && index < 64; ++index) {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[index], &entry) != FALSE) {
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
            ++use.blocks;
            use.bytes += entry.cbData;
        }
    }
    return use;
}

// The process counters would say it in one call, but Wine leaves them at 0.
std::size_t MeasurePrivateBytes() {
    std::size_t total = 0;
    MEMORY_BASIC_INFORMATION region;
    const unsigned char* address = nullptr;
    while (VirtualQuery(address, &region, sizeof region) == sizeof region) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) total += region.RegionSize;
        address = static_cast<const unsigned char*>(region.BaseAddress) + region.RegionSize;
        if (address == nullptr) break;
    }
    return total;
}

unsigned LocksOn(const Image2D* image) { return GlobalFlags(image->mem) & GMEM_LOCKCOUNT; }

} // namespace z3d::test
