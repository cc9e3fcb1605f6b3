// The library's heap beside pages that cannot be accessed.
#pragma once

#include "support/GuardedBytes.h"

namespace z3d::test {

// While it lives, every heap block that the library is given lies beside guard pages; at its last byte only up to the
// 16 bytes that blocks are aligned to. One at a time.
class GuardedHeap {
public:
    explicit GuardedHeap(GuardedEnd end);
    ~GuardedHeap();
    GuardedHeap(const GuardedHeap&) = delete;
    GuardedHeap& operator=(const GuardedHeap&) = delete;
};

} // namespace z3d::test
