// Tests that take an instruction set as their parameter. Where the processor lacks it they are skipped, visibly.
#pragma once

#include "render/InstructionSet.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace z3d::test {

inline std::string NameOf(render::InstructionSet set) {
    static constexpr const char* kNames[] = {"Sse2", "Avx2", "Avx512", "Avx512Gather"};
    return kNames[static_cast<int>(set)];
}

// Whether the set in use gathers voxels by single instructions.
inline bool IsGathering() {
    return platform::CurrentInstructionSet() == platform::InstructionSet::Avx512Gather;
}

// Those that the processor has.
inline std::vector<render::InstructionSet> RunnableInstructionSets() {
    std::vector<render::InstructionSet> sets;
    for (const render::InstructionSet set : render::kInstructionSets) {
        if (set <= render::BestInstructionSet()) sets.push_back(set);
    }
    return sets;
}

class OnInstructionSet : public ::testing::TestWithParam<render::InstructionSet> {
protected:
    void SetUp() override {
        if (GetParam() > render::BestInstructionSet())
            GTEST_SKIP() << "this processor lacks " << NameOf(GetParam());
        render::ForceInstructionSet(GetParam());
    }
    void TearDown() override { render::ForceInstructionSet(render::BestInstructionSet()); }
};

} // namespace z3d::test
