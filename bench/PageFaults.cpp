#include "PageFaults.h"

#if defined(_WIN32)

#include <windows.h>

#include <psapi.h>

namespace z3d::bench {
namespace {

// Wine fills in everything of a process but its page faults, so there the kernel underneath is asked: getrusage,
// whose record for 32-bit programs has 18 numbers of which number 8 are the faults that needed no disk.
std::uint32_t FaultsUnderWine() {
    constexpr int kGetrusage = 77;
    constexpr int kSelf = 0;
    std::uint32_t usage[18] = {};
    int result = kGetrusage;
    asm volatile("int $0x80" : "+a"(result) : "b"(kSelf), "c"(usage) : "memory");
    return usage[8];
}

} // namespace

std::uint32_t PageFaults() {
    static const bool isWine = GetProcAddress(GetModuleHandleA("ntdll"), "wine_get_version") != nullptr;
    if (isWine) return FaultsUnderWine();
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PageFaultCount;
}

} // namespace z3d::bench

#else

#include <sys/resource.h>

namespace z3d::bench {

std::uint32_t PageFaults() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint32_t>(usage.ru_minflt);
}

} // namespace z3d::bench

#endif
