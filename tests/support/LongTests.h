// Tests that look at everything there is where they otherwise look at samples of it.
#pragma once

#include <cstdlib>

namespace z3d::test {

// `scripts/test --long` says so with Z3D_LONG_TESTS=1.
inline bool AreTestsLong() {
    const char* value = std::getenv("Z3D_LONG_TESTS");
    return value != nullptr && value[0] == '1';
}

} // namespace z3d::test
