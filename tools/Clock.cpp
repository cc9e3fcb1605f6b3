#include "Clock.h"

#include <windows.h>

namespace z3d::tools {

double SecondsNow() {
    LARGE_INTEGER now = {};
    LARGE_INTEGER frequency = {};
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

} // namespace z3d::tools
