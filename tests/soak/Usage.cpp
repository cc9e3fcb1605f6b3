#include "soak/Usage.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace z3d::soak {
namespace {

// More than are free among those in use.
constexpr int kNewOnes = 512;
// What the system itself takes and gives back meanwhile. A call that keeps something keeps thousands.
constexpr std::size_t kSlack = 16;

template <class Handle>
std::size_t GreatestIndex(Handle (*make)(), void (*release)(Handle), std::uintptr_t indexMask) {
    Handle handles[kNewOnes];
    std::uintptr_t greatest = 0;
    for (Handle& handle : handles) {
        handle = make();
        greatest = std::max(greatest, reinterpret_cast<std::uintptr_t>(handle) & indexMask);
    }
    for (const Handle handle : handles)
        release(handle);
    return greatest;
}

HANDLE MakeEvent() { return CreateEventA(nullptr, FALSE, FALSE, nullptr); }
void ReleaseEvent(HANDLE event) { CloseHandle(event); }
HBRUSH MakeBrush() { return CreateSolidBrush(RGB(1, 2, 3)); }
void ReleaseBrush(HBRUSH brush) { DeleteObject(brush); }

} // namespace

Usage MeasureUsage() {
    return {test::MeasurePrivateBytes(), test::MeasureHeaps(), GreatestIndex(MakeEvent, ReleaseEvent, ~0u),
            GreatestIndex(MakeBrush, ReleaseBrush, 0xFFFF)};
}

bool UsageSeesLeaks() {
    MeasureUsage(); // the first brush loads what draws
    const Usage before = MeasureUsage();
    void* const block = HeapAlloc(GetProcessHeap(), 0, 100);
    const HANDLE event = MakeEvent();
    const HBRUSH brush = MakeBrush();
    const Usage during = MeasureUsage();
    HeapFree(GetProcessHeap(), 0, block);
    ReleaseEvent(event);
    ReleaseBrush(brush);
    return during.heaps.blocks > before.heaps.blocks && during.handles > before.handles
           && during.gdiObjects > before.gdiObjects;
}

bool IsFlat(const Usage& before, const Usage& after) {
    return after.handles < before.handles + kSlack && after.gdiObjects < before.gdiObjects + kSlack
           && after.heaps.blocks < before.heaps.blocks + kSlack
           && after.privateBytes < before.privateBytes + 1024 * 1024;
}

void Print(const char* label, const Usage& usage) {
    std::printf("%-16s %9zu private bytes, %5zu heap blocks, greatest handle %zu, GDI object %zu\n", label,
                usage.privateBytes, usage.heaps.blocks, usage.handles, usage.gdiObjects);
    std::fflush(stdout);
}

} // namespace z3d::soak
