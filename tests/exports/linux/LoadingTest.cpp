// Volumes from files: names are bytes, and nobody is shown, told or asked anything but the callback.
#include "exports/Library.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

using namespace z3d::test;

struct Report {
    int code;
    unsigned int value;

    bool operator==(const Report&) const = default;
};

struct Listener {
    std::vector<Report> reports;
    int answer = ProgressGoOn;
};

// What the host gives with its callback takes an address.
int Listen(std::size_t user, int code, unsigned int value) {
    auto& listener = *reinterpret_cast<Listener*>(user);
    listener.reports.push_back({code, value});
    return listener.answer;
}

// Two slices of two rows of two bytes.
Volume3D* Load(const char* name, Listener& listener) {
    float most = 0;
    float least = 0;
    return TheLibrary().GetRGBImage(name, name, name, 2, 2, 2, 0, 0, 0, 1, 100, &most, &least, nullptr,
                                    nullptr, reinterpret_cast<std::size_t>(&listener), Listen, 0);
}

constexpr unsigned int kHalf = 0x42480000; // 50 percent
constexpr unsigned int kFull = 0x42C80000; // 100 percent

TEST(Loading, TellsTheCallbackOfEveryStep) {
    const TemporaryFile file(std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6, 7, 8});
    Listener listener;

    Volume3D* volume = Load(file.Name(), listener);

    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(TheLibrary().GlobalLock3D(volume)[1][1][0], 7);
    TheLibrary().Free3DData(volume);
    EXPECT_EQ(listener.reports,
              (std::vector<Report>{
                  {ProgressCodeStart, 0}, {ProgressCodePercent, kHalf}, {ProgressCodePercent, kFull}}));
}

TEST(Loading, EndsAtOnceWhenTheCallbackCancels) {
    const TemporaryFile file(std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6, 7, 8});
    Listener listener = {{}, ProgressCancel};

    EXPECT_EQ(Load(file.Name(), listener), nullptr);
    EXPECT_EQ(listener.reports, (std::vector<Report>{{ProgressCodeStart, 0}, {ProgressCodeFailed, kFull}}));
}

// Where Windows shows a message box.
TEST(Loading, OfAFileThatCannotBeOpenedEndsWithoutAWordToAnybodyElse) {
    TheLibrary().SetRenderMsgTitle("a caption that nobody sees");
    for (const std::string& name : {MissingFileName(), FolderName()}) {
        Listener listener;
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();

        Volume3D* volume = Load(name.c_str(), listener);

        EXPECT_EQ(::testing::internal::GetCapturedStdout() + ::testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(volume, nullptr);
        EXPECT_EQ(listener.reports, (std::vector<Report>{{ProgressCodeFailed, kFull}}));
    }
}

// UTF-8, and bytes that are no text in any encoding.
TEST(Loading, TakesNamesAsBytes) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path();
    for (const char* name : {"zentra-Sch\xC3\xA4"
                             "del \xE9\xA0\xAD.raw",
                             "zentra-\xFF\x80.raw"}) {
        const std::string path = (folder / name).string();
        std::ofstream(path) << "\x01\x02\x03\x04\x05\x06\x07\x08";
        Listener listener;

        Volume3D* volume = Load(path.c_str(), listener);

        EXPECT_NE(volume, nullptr) << name;
        TheLibrary().Free3DData(volume);
        std::filesystem::remove(path);
    }
}

} // namespace
