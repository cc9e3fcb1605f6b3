#include "sdk/selftest/Processor.h"

#include <cpuid.h>

#include <cstring>

namespace z3d::sdk {

std::string ProcessorName() {
    constexpr unsigned int kFirstLeaf = 0x80000002;
    char name[49] = {};
    unsigned int registers[4];
    for (unsigned int leaf = 0; leaf < 3; ++leaf) {
        if (__get_cpuid(kFirstLeaf + leaf, &registers[0], &registers[1], &registers[2], &registers[3]) == 0)
            return "without a name";
        std::memcpy(name + 16 * leaf, registers, sizeof registers);
    }
    return name;
}

// The compiler's run-time asks the system too whether it saves the wide registers.
const char* KernelSet() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq")
        && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl"))
        return "AVX-512";
    return __builtin_cpu_supports("avx2") ? "AVX2" : "SSE2";
}

bool HasSse2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("sse2") != 0;
}

} // namespace z3d::sdk
