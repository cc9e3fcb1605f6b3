// Whatever the condition of the host: the same results to the last byte, and the host as it was before.
#include "exports/Library.h"
#include "exports/Scenarios.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

using namespace z3d::test;

class AnyHostCondition : public ::testing::TestWithParam<Scenario> {};

std::vector<unsigned char> RunIn(const HostCondition& condition, const Scenario& scenario) {
    ForeignHost host(condition);
    Findings findings;
    scenario.run(host, findings);
    return findings.Bytes();
}

TEST_P(AnyHostCondition, ChangesNoResultAndIsLeftAsItWas) {
    for (const std::string_view name : GetParam().exports) {
        if (AddressOf(name.data()) == nullptr) GTEST_SKIP() << name << " is not exported";
    }
    const std::vector<unsigned char> expected = RunIn(kPlainHost, GetParam());

    for (const HostCondition& condition : AllConditions()) {
        const std::vector<unsigned char> actual = RunIn(condition, GetParam());

        const auto [differing, _] =
            std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
        ASSERT_TRUE(actual == expected) << Describe(condition) << ": first difference at byte "
                                        << differing - expected.begin() << " of " << expected.size();
        if (HasFailure()) FAIL() << Describe(condition);
    }
}

std::string NameOf(const ::testing::TestParamInfo<Scenario>& info) {
    std::string name = info.param.name;
    std::ranges::replace_if(
        name, [](char letter) { return letter == ' ' || letter == '-'; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, AnyHostCondition, ::testing::ValuesIn(AllScenarios()), NameOf);

TEST(Scenarios, CallEveryExport) {
    const std::vector<Scenario> scenarios = AllScenarios();
    for (const ExportedName& exported : ExportedNames()) {
        const bool called = std::ranges::any_of(scenarios, [&](const Scenario& scenario) {
            return std::ranges::count(scenario.exports, exported.name) != 0;
        });
        EXPECT_TRUE(called) << exported.name << " has no scenario";
    }
}

} // namespace
