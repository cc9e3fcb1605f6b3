// Every allocation and lock of an image failing in turn.
#include "frame/Image2D.h"

#include "support/Refusals.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace z3d;
using platform::Resource;

TEST(Image2DFailure, AllocationTakesTheHandleAndThePixels) {
    test::RefuseNothing();

    Image2D* image = frame::GlobalAlloc2D(4, 3, 1);

    EXPECT_EQ(test::RequestsSeen(), 2);
    EXPECT_EQ(test::Outstanding(Resource::Heap), 1);
    EXPECT_EQ(test::Outstanding(Resource::Block), 1);
    frame::GlobalFree2D(image);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Image2DFailure, AllocationFailsWithNullAndKeepsNothing) {
    test::ForEveryRefusal([](bool refused) {
        Image2D* image = frame::GlobalAlloc2D(4, 3, 1);
        EXPECT_EQ(image == nullptr, refused);
        frame::GlobalFree2D(image);
    });
    test::ForEveryRefusal([](bool refused) {
        Image2D* image = frame::AllocUnset2D(4, 3, 1);
        EXPECT_EQ(image == nullptr, refused);
        frame::GlobalFree2D(image);
    });
}

TEST(Image2DFailure, WithoutATableTheImageStaysUnlocked) {
    Image2D* image = frame::GlobalAlloc2D(4, 3, 1);

    test::RefuseRequest(0);
    EXPECT_EQ(frame::GlobalLock2D(image), nullptr);
    EXPECT_EQ(image->rows, nullptr);
    EXPECT_EQ(test::RequestsSeen(), 1) << "no lock was tried";

    test::RefuseNothing();
    EXPECT_NE(frame::GlobalLock2D(image), nullptr);
    frame::GlobalFree2D(image);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Image2DFailure, AFailedLockLeavesATableOfNullRows) {
    Image2D* image = frame::GlobalAlloc2D(4, 3, 1);
    test::RefuseRequest(1);
    EXPECT_EQ(frame::GlobalLock2D(image), nullptr);
    test::RefuseNothing();

    std::uint8_t** rows = frame::GlobalLock2D(image);
    ASSERT_NE(rows, nullptr);
    EXPECT_EQ(rows, image->rows);
    EXPECT_EQ(std::count(rows, rows + 3, nullptr), 3);
    EXPECT_EQ(test::RequestsSeen(), 0) << "the second lock asks for nothing";
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 0);

    frame::GlobalFree2D(image);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Image2DFailure, AnUnlockEndsTheStateAfterAFailedLock) {
    Image2D* image = frame::GlobalAlloc2D(4, 3, 1);
    test::RefuseRequest(1);
    EXPECT_EQ(frame::GlobalLock2D(image), nullptr);
    test::RefuseNothing();

    EXPECT_EQ(frame::GlobalUnlock2D(image), 0);
    EXPECT_EQ(image->rows, nullptr);
    std::uint8_t** rows = frame::GlobalLock2D(image);
    ASSERT_NE(rows, nullptr);
    EXPECT_NE(rows[2], nullptr);

    EXPECT_EQ(frame::GlobalUnlock2D(image), 0);
    frame::GlobalFree2D(image);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Image2DFailure, LocksUnlocksAndFreesLeaveNothingWhateverFails) {
    test::ForEveryRefusal([](bool refused) {
        Image2D* image = frame::GlobalAlloc2D(4, 3, 1);
        if (image == nullptr) return;
        const bool locked = frame::GlobalLock2D(image) != nullptr;
        EXPECT_EQ(frame::GlobalUnlock2D(image), 0);
        const bool lockedAgain = frame::GlobalLock2D(image) != nullptr;
        EXPECT_EQ(locked && lockedAgain, !refused);
        frame::GlobalFree2D(image);
    });
}

} // namespace
