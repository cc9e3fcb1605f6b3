// Tests that look at everything there is where they otherwise look at samples of it, or at other samples.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

namespace z3d::test {

// `scripts/test --long` says so with Z3D_LONG_TESTS=1.
inline bool AreTestsLong() {
    const char* value = std::getenv("Z3D_LONG_TESTS");
    return value != nullptr && value[0] == '1';
}

// The seed of a test that is worth running again with others: --gtest_random_seed=N, or its own.
inline std::uint32_t SeedOr(std::uint32_t own) {
    const std::int32_t given = GTEST_FLAG_GET(random_seed);
    return given == 0 ? own : static_cast<std::uint32_t>(given);
}

} // namespace z3d::test
