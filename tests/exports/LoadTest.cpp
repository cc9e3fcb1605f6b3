// Loading and unloading: nothing is touched, nothing stays.
#include "exports/ForeignHost.h"
#include "exports/HeapUse.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <tlhelp32.h>

#include <array>
#include <bit>
#include <string>

namespace {

using namespace z3d::test;

// A copy of the DLL under another name, which no other test keeps loaded.
class Load : public ::testing::Test {
protected:
    void SetUp() override {
        char program[MAX_PATH];
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        const std::string path(program);
        const std::string folder = path.substr(0, path.rfind('\\') + 1);
        copy_ = folder + "test_exports_copy.dll";
        ASSERT_NE(CopyFileA((folder + "Zentra3DRendering.dll").c_str(), copy_.c_str(), FALSE), FALSE);
    }
    void TearDown() override {
        EXPECT_EQ(GetModuleHandleA(copy_.c_str()), nullptr);
        DeleteFileA(copy_.c_str());
    }

    std::string copy_;
};

// Loads in the given condition and checks that the host finds itself unchanged.
HMODULE LoadIn(const HostCondition& condition, const char* path) {
    const CallOutcome outcome = CallForeign(reinterpret_cast<const void*>(&LoadLibraryA), SlotsOf(path),
                                            condition.misalignment, condition.floatingPoint);
    EXPECT_EQ(outcome.after, condition.floatingPoint) << Describe(condition);
    return std::bit_cast<HMODULE>(outcome.result);
}

int ThreadCount() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more != FALSE; more = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId();
    CloseHandle(snapshot);
    return count;
}

TEST_F(Load, LeavesThePrecisionAndTheMasksOfTheHost) {
    for (const FloatingPointEnvironment& host : {FloatingPointEnvironment{},
                                                 {0x027F, 0, 0xFFFF, 0x9FC0},
                                                 {0x1372, 0, 0xFFFF, 0x0000},
                                                 {0x0C7F, 0, 0xFFFF, 0x7F80}}) {
        const HMODULE module = LoadIn({0, host}, copy_.c_str());
        ASSERT_NE(module, nullptr);
        EXPECT_NE(FreeLibrary(module), FALSE);
    }
}

TEST_F(Load, LeavesNothingAfterTheUnload) {
    const auto loadAndFree = [&] { FreeLibrary(LoadLibraryA(copy_.c_str())); };
    for (int round = 0; round < 10; ++round)
        loadAndFree();
    const HeapUse before = MeasureHeaps();

    for (int round = 0; round < 100; ++round)
        loadAndFree();

    EXPECT_EQ(MeasureHeaps(), before);
}

TEST_F(Load, MakesNoThread) {
    const int before = ThreadCount();
    const HMODULE module = LoadLibraryA(copy_.c_str());

    EXPECT_EQ(ThreadCount(), before);

    FreeLibrary(module);
}

// Each copy has its own state and its own handles.
TEST_F(Load, TwoCopiesWorkBesideEachOther) {
    const HMODULE module = LoadLibraryA(copy_.c_str());
    const auto* make = reinterpret_cast<const void*>(GetProcAddress(module, "GlobalAlloc3D"));
    const auto* free = reinterpret_cast<const void*>(GetProcAddress(module, "Free3DData"));

    const std::array volume = {CallForeign(make, SlotsOf(4, 3, 2, 1), 0, {}).result};
    EXPECT_NE(volume[0], 0u);
    CallForeign(free, volume, 0, {});

    FreeLibrary(module);
}

} // namespace
