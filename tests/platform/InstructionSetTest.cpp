#include "platform/InstructionSet.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d::platform;

TEST(InstructionSet, TheBestIsInUseUntilAnotherIsForced) {
    EXPECT_EQ(CurrentInstructionSet(), BestInstructionSet());

    for (const InstructionSet set : kInstructionSets) {
        ForceInstructionSet(set);
        EXPECT_EQ(CurrentInstructionSet(), set);
    }
    ForceInstructionSet(BestInstructionSet());
}

// The compiler's own detection, which asks the system too.
TEST(InstructionSet, TheBestIsWhatTheCompilersRuntimeFinds) {
    __builtin_cpu_init();
    const bool hasAvx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq")
                           && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
    const bool hasAvx2 = __builtin_cpu_supports("avx2");

    EXPECT_EQ(BestInstructionSet() >= InstructionSet::Avx512, hasAvx512);
    EXPECT_EQ(BestInstructionSet() >= InstructionSet::Avx2, hasAvx2);
}

} // namespace
