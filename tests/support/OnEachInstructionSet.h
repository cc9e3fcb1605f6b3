// Tests that run once per instruction set, which is in use meanwhile.
//
//   class MyTest : public test::OnEachInstructionSet {};
//   TEST_P(MyTest, DoesThis) { ... }
//   Z3D_ON_EACH_INSTRUCTION_SET(MyTest);
//
// A set that the processor lacks is reported as skipped.
#pragma once

#include "platform/InstructionSet.h"

#include <gtest/gtest.h>

#include <string>

namespace z3d::test {

class OnEachInstructionSet : public ::testing::TestWithParam<platform::InstructionSet> {
public:
    static std::string Name(const ::testing::TestParamInfo<platform::InstructionSet>& info) {
        constexpr const char* kNames[] = {"Sse2", "Avx2", "Avx512"};
        return kNames[static_cast<int>(info.param)];
    }

protected:
    void SetUp() override {
        if (GetParam() > platform::BestInstructionSet()) GTEST_SKIP() << "not on this processor";
        platform::ForceInstructionSet(GetParam());
    }
    void TearDown() override { platform::ForceInstructionSet(platform::BestInstructionSet()); }
};

#define Z3D_ON_EACH_INSTRUCTION_SET(suite)                                                                   \
    INSTANTIATE_TEST_SUITE_P(, suite, ::testing::ValuesIn(z3d::platform::kInstructionSets), suite::Name)

} // namespace z3d::test
