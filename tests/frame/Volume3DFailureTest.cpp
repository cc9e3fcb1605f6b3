// Every allocation and lock of a volume failing in turn.
#include "frame/Volume3D.h"

#include "frame/Image2D.h"
#include "support/Refusals.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d;
using platform::Resource;

TEST(Volume3DFailure, AllocationFailsWithNullAndKeepsNothing) {
    test::ForEveryRefusal([](bool refused) {
        Volume3D* volume = frame::GlobalAlloc3D(4, 3, 5, 1);
        EXPECT_EQ(volume == nullptr, refused);
        frame::GlobalFree3D(volume);
    });
}

TEST(Volume3DFailure, AllocationStopsAtTheFirstSliceThatFails) {
    test::RefuseRequest(2 + 2 * 2); // handle, slice table, two slices, then the handle of slice 2

    EXPECT_EQ(frame::GlobalAlloc3D(4, 3, 5, 1), nullptr);

    EXPECT_EQ(test::RequestsSeen(), 7);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
    test::RefuseNothing();
}

TEST(Volume3DFailure, WithoutSlicesOnlyTheHandleAndItsTableAreTaken) {
    test::RefuseNothing();

    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 5, 0);

    EXPECT_EQ(test::RequestsSeen(), 2);
    frame::GlobalFree3D(volume);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Volume3DFailure, WithoutATableTheVolumeStaysUnlocked) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 2, 1);

    test::RefuseRequest(0);
    EXPECT_EQ(frame::GlobalLock3D(volume), nullptr);
    EXPECT_EQ(volume->sliceRows, nullptr);
    EXPECT_EQ(test::RequestsSeen(), 1) << "no slice was locked";

    test::RefuseNothing();
    frame::GlobalFree3D(volume);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

// Requests of a lock: the slice table, then row table and lock of each slice.
TEST(Volume3DFailure, AFailedRowTableUnlocksTheSlicesBefore) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 3, 1);

    test::RefuseRequest(1 + 2 * 2);
    EXPECT_EQ(frame::GlobalLock3D(volume), nullptr);
    EXPECT_EQ(volume->sliceRows, nullptr);
    for (int z = 0; z < 3; ++z)
        EXPECT_EQ(volume->slices[z]->rows, nullptr) << z;
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 0);

    test::RefuseNothing();
    EXPECT_NE(frame::GlobalLock3D(volume), nullptr);
    frame::GlobalFree3D(volume);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Volume3DFailure, AFailedSliceLockUnlocksTheSlicesBeforeAndLeavesItsOwnTable) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 3, 1);

    test::RefuseRequest(1 + 2 * 1 + 1);
    EXPECT_EQ(frame::GlobalLock3D(volume), nullptr);
    EXPECT_EQ(volume->sliceRows, nullptr);
    EXPECT_EQ(volume->slices[0]->rows, nullptr);
    ASSERT_NE(volume->slices[1]->rows, nullptr);
    EXPECT_EQ(volume->slices[1]->rows[2], nullptr);
    EXPECT_EQ(volume->slices[2]->rows, nullptr);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 0);

    test::RefuseNothing();
    frame::GlobalFree3D(volume);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

// The unfilled table of the slice is taken as it stands.
TEST(Volume3DFailure, ALockAfterAFailedOneGivesTheUnfilledTable) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 2, 1);
    test::RefuseRequest(2);
    EXPECT_EQ(frame::GlobalLock3D(volume), nullptr);
    test::RefuseNothing();

    std::uint8_t*** slices = frame::GlobalLock3D(volume);
    ASSERT_NE(slices, nullptr);
    EXPECT_EQ(slices[0][0], nullptr);
    EXPECT_NE(slices[1][0], nullptr);
    EXPECT_EQ(test::Outstanding(Resource::BlockLock), 1);

    // Unlocking ends it; the next lock is a sound one.
    EXPECT_EQ(frame::GlobalUnlock3D(volume), 0);
    EXPECT_NE(frame::GlobalLock3D(volume)[0][0], nullptr);
    frame::GlobalFree3D(volume);
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

TEST(Volume3DFailure, LocksUnlocksAndFreesLeaveNothingWhateverFails) {
    test::ForEveryRefusal([](bool refused) {
        Volume3D* volume = frame::GlobalAlloc3D(4, 3, 3, 3);
        if (volume == nullptr) return;
        const bool locked = frame::GlobalLock3D(volume) != nullptr;
        EXPECT_EQ(frame::GlobalUnlock3D(volume), locked ? 0 : 1);
        const bool lockedAgain = frame::GlobalLock3D(volume) != nullptr;
        EXPECT_EQ(locked && lockedAgain, !refused);
        frame::GlobalFree3D(volume);
    });
}

TEST(Volume3DFailure, FreesWhileEverythingIsRefused) {
    Volume3D* volume = frame::GlobalAlloc3D(4, 3, 3, 3);
    frame::GlobalLock3D(volume);

    test::RefuseFrom(0);
    EXPECT_EQ(frame::GlobalUnlock3D(volume), 0);
    frame::GlobalFree3D(volume);

    EXPECT_EQ(test::RequestsSeen(), 0) << "releasing needs nothing";
    test::RefuseNothing();
    EXPECT_EQ(test::OutstandingInTotal(), 0);
}

} // namespace
