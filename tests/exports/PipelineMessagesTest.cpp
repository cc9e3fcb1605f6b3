// Message boxes and their title, through the DLL.
#include "exports/HeapUse.h"
#include "exports/ImageCall.h"
#include "exports/Library.h"

#include "support/MessageBoxes.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <bit>
#include <string>

namespace {

using namespace z3d::test;

using Calls = std::vector<CallbackCall>;

// A DLL of its own, with a title that nobody has set yet.
class Copy {
public:
    Copy() {
        char program[MAX_PATH];
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        const std::string path(program);
        const std::string folder = path.substr(0, path.rfind('\\') + 1);
        name_ = folder + "test_exports_title.dll";
        EXPECT_NE(CopyFileA((folder + "Zentra3DRendering.dll").c_str(), name_.c_str(), FALSE), FALSE);
        Load();
    }
    ~Copy() {
        Unload();
        DeleteFileA(name_.c_str());
    }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    void Load() { module_ = LoadLibraryA(name_.c_str()); }
    void Unload() {
        if (module_ != nullptr) FreeLibrary(module_);
        module_ = nullptr;
    }

    const char* SetTitle(const char* title) const {
        return Find<decltype(&SetRenderMsgTitle)>("SetRenderMsgTitle")(title);
    }

    // Fails to open a file.
    void ShowBox() const {
        Find<decltype(&GetRGBImage)>("GetRGBImage")("no such file", nullptr, nullptr, 1, 1, 1, 0, 0, 0, 1, 9,
                                                    nullptr, nullptr, nullptr, nullptr, 0, nullptr, 0);
    }

private:
    template <class Function>
    Function Find(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }

    std::string name_;
    HMODULE module_ = nullptr;
};

TEST(PipelineMessages, SayThatAFileCannotBeOpenedUnderTheHostsTitle) {
    TheLibrary().SetRenderMsgTitle("The host's title");
    CallbackLog log;
    ImageCall call = {.red = "no such file", .log = &log};
    Volume3D* volume = nullptr;

    const ShownBox box = BoxShownBy([&] { volume = call.RunUnwatched(); });

    EXPECT_EQ(box, (ShownBox{"The host's title", "Cannot open file", 0x30}));
    EXPECT_EQ(volume, nullptr);
    EXPECT_EQ(log.calls, Calls{kNoResult});
}

TEST(PipelineMessages, SayThatAFileCannotBeOpenedWhileSomeoneHasItOpenForWriting) {
    const TemporaryFile file(std::vector<std::uint8_t>{1});
    const HANDLE writer = CreateFileA(file.Name(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(writer, INVALID_HANDLE_VALUE);
    ImageCall call = {.red = file.Name()};
    const auto load = [&] { EXPECT_EQ(call.RunUnwatched(), nullptr); };

    EXPECT_EQ(BoxShownBy(load).text, "Cannot open file");

    CloseHandle(writer);
    Volume3D* volume = call.Run();
    EXPECT_NE(volume, nullptr);
    TheLibrary().Free3DData(volume);
}

TEST(PipelineMessages, AreNotShownForACancelOrForSizesBelowOne) {
    const TemporaryFile file(std::vector<std::uint8_t>{1});
    CallbackLog log;
    log.cancelAt = 0;
    ImageCall cancelled = {.red = file.Name(), .log = &log};
    ImageCall empty = {.red = file.Name(), .height = 0};

    EXPECT_EQ(BoxShownBy([&] { EXPECT_EQ(cancelled.Run(), nullptr); }), ShownBox{});
    EXPECT_EQ(BoxShownBy([&] { EXPECT_EQ(empty.Run(), nullptr); }), ShownBox{});
}

LRESULT CALLBACK RefuseWindows(int code, WPARAM first, LPARAM second) {
    return code == HCBT_CREATEWND ? 1 : CallNextHookEx(nullptr, code, first, second);
}

// What the header advises to a host without a user.
TEST(PipelineMessages, CanBeKeptAwayByAHookOfTheHosts) {
    CallbackLog log;
    ImageCall call = {.red = "no such file", .log = &log};
    const HHOOK hook = SetWindowsHookExW(WH_CBT, RefuseWindows, nullptr, GetCurrentThreadId());
    ASSERT_NE(hook, nullptr);

    EXPECT_EQ(call.RunUnwatched(), nullptr) << "nobody is here to press OK";

    UnhookWindowsHookEx(hook);
    EXPECT_EQ(log.calls, Calls{kNoResult});
}

TEST(PipelineMessages, AreTitledByTheLibraryAtFirst) {
    const Copy copy;

    EXPECT_EQ(BoxShownBy([&] { copy.ShowBox(); }), (ShownBox{"Zentra3DRendering", "Cannot open file", 0x30}));
}

TEST(PipelineMessages, MayHaveAnEmptyTitle) {
    const Copy copy;
    copy.SetTitle("");

    EXPECT_EQ(BoxShownBy([&] { copy.ShowBox(); }), (ShownBox{"", "Cannot open file", 0x30}));
}

TEST(PipelineTitle, IsACopyThatTheHostMayRead) {
    const Copy copy;
    std::string hosts = "Viewer";

    const char* title = copy.SetTitle(hosts.c_str());
    hosts = "changed";

    EXPECT_STREQ(title, "Viewer");
    EXPECT_EQ(copy.SetTitle(nullptr), title);
    EXPECT_STREQ(copy.SetTitle(title), "Viewer");
}

TEST(PipelineTitle, IsNullBeforeTheFirst) {
    const Copy copy;

    EXPECT_EQ(copy.SetTitle(nullptr), nullptr);
}

std::size_t StateOf(const void* address) {
    MEMORY_BASIC_INFORMATION region = {};
    VirtualQuery(address, &region, sizeof region);
    return region.State;
}

// Memory of this size goes back to the system as soon as it is freed.
TEST(PipelineTitle, IsReleasedByItsSuccessor) {
    const Copy copy;
    const std::string large(8 << 20, 'x');

    const char* first = copy.SetTitle(large.c_str());
    EXPECT_EQ(StateOf(first), MEM_COMMIT);
    copy.SetTitle("small");

    EXPECT_EQ(StateOf(first), MEM_FREE);
}

TEST(PipelineTitle, IsReleasedWhenTheLibraryIsUnloaded) {
    Copy copy;
    const char* title = copy.SetTitle(std::string(8 << 20, 'x').c_str());
    EXPECT_EQ(StateOf(title), MEM_COMMIT);

    copy.Unload();

    EXPECT_EQ(StateOf(title), MEM_FREE);
}

TEST(PipelineTitle, LeavesNothingAfterTheUnload) {
    Copy copy;
    const auto round = [&] {
        copy.Load();
        copy.SetTitle("a title that is still set at the end");
        copy.Unload();
    };
    copy.Unload();
    for (int i = 0; i < 10; ++i)
        round();
    const HeapUse before = MeasureHeaps();

    for (int i = 0; i < 100; ++i)
        round();

    EXPECT_EQ(MeasureHeaps(), before);
}

} // namespace
