// Fresh memory costs a page fault for every 4096 bytes, which in some calls is a third of the time.
#pragma once

#include <cstdint>

namespace z3d::bench {

// Page faults of this process until now. A difference tells, and wraps around.
std::uint32_t PageFaults();

} // namespace z3d::bench
