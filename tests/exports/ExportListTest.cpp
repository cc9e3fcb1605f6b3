// Names, calling convention and the smallest possible call of every export.
#include "exports/ForeignHost.h"
#include "exports/Library.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace z3d::test;

TEST(ExportList, EveryNameIsFoundUndecorated) {
    ASSERT_FALSE(ExportedNames().empty());
    for (const ExportedName& exported : ExportedNames())
        EXPECT_NE(AddressOf(exported.name), nullptr) << exported.name;
}

TEST(ExportList, NoNameIsFoundDecorated) {
    for (const ExportedName& exported : ExportedNames()) {
        const std::string stdcallName = exported.name + ("@" + std::to_string(exported.argumentBytes));
        EXPECT_EQ(AddressOf(stdcallName.c_str()), nullptr);
        EXPECT_EQ(AddressOf(("_" + stdcallName).c_str()), nullptr);
    }
}

TEST(ExportList, NamesAreCaseSensitive) {
    EXPECT_NE(AddressOf("GlobalAlloc2D"), nullptr);
    EXPECT_EQ(AddressOf("GlobalAlloc2d"), nullptr);
}

// Every argument null: nothing to do or a failure, for every export there is or will be. A host finds its
// stack, registers and floating-point environment as they were.
TEST(ExportList, EveryExportTakesNothingButNullsInAnyHostCondition) {
    for (const HostCondition& condition : AllConditions()) {
        ForeignHost host(condition);
        for (const ExportedName& exported : ExportedNames()) {
            if (std::string(exported.name).starts_with("GlobalAlloc"))
                continue; // would give something to free
            host.CallWithSlots(exported.name, std::vector<Slot>(exported.argumentBytes / 4));
            ASSERT_FALSE(HasFailure()) << Describe(condition);
        }
    }
}

} // namespace
