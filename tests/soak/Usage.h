// What the process holds of the system.
#pragma once

#include "exports/HeapUse.h"

#include <cstddef>

namespace z3d::soak {

// The counters of the system would give handles and objects in one call, but Wine leaves them at 0. So they are the
// greatest index among some new ones, which grows by one with each that is never given back.
struct Usage {
    std::size_t privateBytes;
    test::HeapUse heaps;
    std::size_t handles;
    std::size_t gdiObjects;
};

Usage MeasureUsage();

// Whether the measures tell that a heap block, a handle and a GDI object have been taken.
bool UsageSeesLeaks();

// Nothing has grown beyond what comes and goes: a few handles, objects and heap blocks, and a megabyte of private
// bytes, which is what heaps keep of what was given back to them.
bool IsFlat(const Usage& before, const Usage& after);

void Print(const char* label, const Usage& usage);

} // namespace z3d::soak
