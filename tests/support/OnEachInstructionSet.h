// Tests that run once per instruction set, which is in use meanwhile.
//
//   class MyTest : public test::OnEachInstructionSet {};
//   TEST_P(MyTest, DoesThis) { ... }
//   Z3D_ON_EACH_INSTRUCTION_SET(MyTest);
//
// A set that the processor lacks is reported as skipped.
#pragma once

#include "support/InstructionSets.h"

namespace z3d::test {

class OnEachInstructionSet : public OnInstructionSet {
public:
    static std::string Name(const ::testing::TestParamInfo<platform::InstructionSet>& info) {
        return NameOf(info.param);
    }
};

#define Z3D_ON_EACH_INSTRUCTION_SET(suite)                                                                   \
    INSTANTIATE_TEST_SUITE_P(, suite, ::testing::ValuesIn(z3d::platform::kInstructionSets), suite::Name)

} // namespace z3d::test
