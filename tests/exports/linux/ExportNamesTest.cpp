// Names as a host finds them, and the smallest call of every export.
#include "exports/Library.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d::test;

TEST(ExportNames, AreFoundAsTheyAreWritten) {
    ASSERT_EQ(ExportedNames().size(), 23u);
    for (const ExportedName& exported : ExportedNames())
        EXPECT_NE(AddressOf(exported.name), nullptr) << exported.name;
    for (const char* name : {"GlobalHandle", "GlobalUnlock", "GlobalFree"})
        EXPECT_NE(AddressOf(name), nullptr) << name;
    EXPECT_EQ(AddressOf("GlobalAlloc2d"), nullptr);
}

// Enough for the arguments of any of them: six integers in registers and twelve on the stack, eight doubles.
using EveryArgumentNull = void (*)(void*, void*, void*, void*, void*, void*, double, double, double, double,
                                   double, double, double, double, void*, void*, void*, void*, void*, void*,
                                   void*, void*, void*, void*, void*, void*);

TEST(ExportNames, EveryExportTakesNothingButNulls) {
    for (const ExportedName& exported : ExportedNames()) {
        if (std::string(exported.name).starts_with("GlobalAlloc")) continue; // would give something to free
        const auto call = reinterpret_cast<EveryArgumentNull>(const_cast<void*>(AddressOf(exported.name)));
        call(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0, 0, 0, 0, 0, 0, 0, nullptr, nullptr,
             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    }
}

} // namespace
