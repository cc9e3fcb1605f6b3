// Fresh memory costs a page fault for every 4096 bytes, which in some calls is a third of the time.
#pragma once

#include <cstdint>
#include <functional>

namespace z3d::bench {

// Page faults of this process until now. A difference tells, and wraps around.
std::uint32_t PageFaults();

// Of one call.
inline std::uint32_t PageFaultsOf(const std::function<void()>& call) {
    const std::uint32_t before = PageFaults();
    call();
    return PageFaults() - before;
}

} // namespace z3d::bench
