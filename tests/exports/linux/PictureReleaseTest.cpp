// The three functions that stand in for those of Windows by which a host releases a picture.
#include "exports/linux/PictureRelease.h"
#include "exports/ExportedVolume.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using namespace z3d::test;

TEST(PictureRelease, APictureIsABlockLockedOnceWhoseAddressIsNotItsHandle) {
    const ExportedVolume volume(13, 11, 9, 1);
    const PictureRelease& release = ThePictureRelease();

    const Projection projection = RenderMaximum(volume.Get(), kOblique);
    ASSERT_NE(projection.pixels, nullptr);
    void* block = release.GlobalHandle(projection.pixels);
    ASSERT_NE(block, nullptr);
    EXPECT_NE(block, static_cast<void*>(projection.pixels));
    EXPECT_TRUE(IsBlockOf(projection.pixels, ProjectionBytes(projection.width, projection.height)));

    EXPECT_EQ(release.GlobalUnlock(block), 0);
    EXPECT_EQ(release.GlobalUnlock(block), 0) << "unlocked already";
    EXPECT_EQ(release.GlobalFree(block), nullptr);
    EXPECT_EQ(release.GlobalHandle(projection.pixels), nullptr);
}

TEST(PictureRelease, ALockedBlockIsReleasedToo) {
    const ExportedVolume volume(4, 3, 2, 1);
    const Projection projection = RenderMaximum(volume.Get(), kNotTurned);

    EXPECT_EQ(ThePictureRelease().GlobalFree(ThePictureRelease().GlobalHandle(projection.pixels)), nullptr);
}

TEST(PictureRelease, WhatIsNoBlockIsLeftAlone) {
    const ExportedVolume volume(4, 3, 2, 1);
    const PictureRelease& release = ThePictureRelease();
    Projection projection = RenderMaximum(volume.Get(), kNotTurned);
    int other = 0;
    void* const wrongHandles[] = {&other, projection.pixels, reinterpret_cast<void*>(1), nullptr};

    for (void* wrong : wrongHandles) {
        EXPECT_EQ(release.GlobalUnlock(wrong), 0);
        EXPECT_EQ(release.GlobalFree(wrong), wrong);
    }
    EXPECT_EQ(release.GlobalHandle(&other), nullptr);
    EXPECT_EQ(release.GlobalHandle(projection.pixels + 1), nullptr);
    EXPECT_EQ(release.GlobalHandle(nullptr), nullptr);

    EXPECT_TRUE(ReleaseProjection(projection.pixels));
}

TEST(PictureRelease, AVolumeAndItsPicturesAreKeptApart) {
    const ExportedVolume volume(4, 3, 2, 1);
    const Projection first = RenderMaximum(volume.Get(), kNotTurned);
    const Projection second = RenderMaximum(volume.Get(), kNotTurned);

    EXPECT_TRUE(ReleaseProjection(first.pixels));
    EXPECT_EQ(second.pixels[0], second.pixels[1]);
    EXPECT_TRUE(ReleaseProjection(second.pixels));
}

// Blocks of all threads are in one list.
TEST(PictureRelease, ThreadsReleaseTheirOwnPictures) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 400;
    int released[kThreads] = {};
    std::vector<std::thread> threads;

    for (int& count : released) {
        threads.emplace_back([&count] {
            for (int round = 0; round < kRounds; ++round) {
                const ExportedVolume volume(5, 4, 3, 1);
                count += ReleaseProjection(RenderMaximum(volume.Get(), kOblique).pixels);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    for (const int count : released)
        EXPECT_EQ(count, kRounds);
}

// A mistake of a host, which Windows answers by looking handles up: here too nothing is released twice.
TEST(PictureRelease, OfThreadsThatReleaseOnePictureOneDoes) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 500;
    const ExportedVolume volume(4, 3, 2, 1);
    const PictureRelease& release = ThePictureRelease();

    for (int round = 0; round < kRounds; ++round) {
        void* const block = release.GlobalHandle(RenderMaximum(volume.Get(), kNotTurned).pixels);
        std::atomic<int> waiting = kThreads;
        std::atomic<int> releases = 0;
        std::vector<std::thread> threads;
        for (int number = 0; number < kThreads; ++number) {
            threads.emplace_back([&] {
                --waiting;
                while (waiting > 0)
                    std::this_thread::yield();
                releases += release.GlobalFree(block) == nullptr;
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_EQ(releases, 1);
    }
}

} // namespace
