#include "platform/File.h"

#include "support/Refusals.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;
using platform::File;
using platform::Resource;

const std::vector<std::uint8_t> kFiveBytes = {10, 20, 0, 26, 255};

TEST(File, ReadsItsBytesInOrder) {
    const TemporaryFile onDisk(kFiveBytes);
    File file(onDisk.Name());
    std::array<std::uint8_t, 5> bytes = {};

    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(file.Read(bytes.data(), 2), 2u);
    EXPECT_EQ(file.Read(bytes.data() + 2, 3), 3u);

    // Among them an end-of-text byte and a null byte: nothing is translated.
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 5>{10, 20, 0, 26, 255}));
}

TEST(File, GivesFewerBytesAtItsEndAndLeavesTheRest) {
    const TemporaryFile onDisk(kFiveBytes);
    File file(onDisk.Name());
    std::array<std::uint8_t, 8> bytes;
    bytes.fill(7);

    EXPECT_EQ(file.Read(bytes.data(), bytes.size()), 5u);
    EXPECT_EQ(file.Read(bytes.data(), bytes.size()), 0u);

    EXPECT_EQ(bytes, (std::array<std::uint8_t, 8>{10, 20, 0, 26, 255, 7, 7, 7}));
}

TEST(File, ReadsAnEmptyFileAsNothing) {
    const TemporaryFile onDisk(std::vector<std::uint8_t>{});
    File file(onDisk.Name());
    std::uint8_t byte = 7;

    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(file.Read(&byte, 1), 0u);
    EXPECT_EQ(byte, 7);
}

TEST(File, LetsOthersReadMeanwhile) {
    const TemporaryFile onDisk(kFiveBytes);
    File first(onDisk.Name());
    File second(onDisk.Name());
    std::uint8_t byte = 0;

    EXPECT_TRUE(second.IsOpen());
    EXPECT_EQ(first.Read(&byte, 1), 1u);
    EXPECT_EQ(second.Read(&byte, 1), 1u);
    EXPECT_EQ(byte, 10);
}

TEST(File, IsNotOpenWithoutAFile) {
    const std::string tooLong(40000, 'x');
    std::uint8_t byte = 7;

    for (const std::string& name : {MissingFileName(), FolderName(), tooLong, std::string()}) {
        File file(name.c_str());
        EXPECT_FALSE(file.IsOpen()) << name.substr(0, 80);
        EXPECT_EQ(file.Read(&byte, 1), 0u);
    }
    EXPECT_FALSE(File(nullptr).IsOpen());
    EXPECT_EQ(byte, 7);
}

TEST(File, IsReleasedAtTheEndOfItsScope) {
    const TemporaryFile onDisk(kFiveBytes);
    const std::int64_t before = Outstanding(Resource::FileOpen);
    {
        const File file(onDisk.Name());
        EXPECT_EQ(Outstanding(Resource::FileOpen), before + 1);
    }
    EXPECT_EQ(Outstanding(Resource::FileOpen), before);
}

TEST(File, CanBeRefusedAtEveryRequest) {
    const TemporaryFile onDisk(kFiveBytes);
    ForEveryRefusal([&](bool refused) {
        std::array<std::uint8_t, 5> bytes = {};
        File file(onDisk.Name());
        const std::size_t got = file.Read(bytes.data(), 5);
        EXPECT_EQ(got, refused ? 0u : 5u);
        EXPECT_EQ(bytes[0], refused ? 0 : 10);
    });
}

} // namespace
