// The processor, by its own name, and which of the library's kernels it gets.
#pragma once

#include <string>

namespace z3d::sdk {

std::string ProcessorName();

// "SSE2", "AVX2" or "AVX-512": what processor and system offer, decided as the library decides it.
const char* KernelSet();

// False on processors that the library was not made for.
bool HasSse2();

} // namespace z3d::sdk
