// What is more memory than a process of 32 bits has, and less than the library can ask for. A process of 64 bits gets it, so
// that this is not built there; what short memory does is tested with refused requests on every build.
#include "exports/ExportedVolume.h"
#include "exports/HeapUse.h"
#include "exports/ImageCall.h"
#include "exports/Library.h"

#include "support/MessageBoxes.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d::test;

TEST(ShortMemory, GivesNoImage) {
    EXPECT_EQ(TheLibrary().GlobalAlloc2D(65535, 65535, 1), nullptr);
    EXPECT_EQ(TheLibrary().GlobalAlloc2D(32768, 32767, 4), nullptr);
}

TEST(ShortMemory, GivesNoVolume) {
    EXPECT_EQ(TheLibrary().GlobalAlloc3D(8192, 8192, 100, 4), nullptr);
    EXPECT_EQ(TheLibrary().GlobalAlloc3D(65535, 65535, 1, 1), nullptr);

    // What was made of the first volume is there again.
    Volume3D* volume = TheLibrary().GlobalAlloc3D(8192, 8192, 3, 4);
    EXPECT_NE(volume, nullptr);
    TheLibrary().GlobalFree3D(volume);
}

// 16001 * 16001 * 12 = 3,072,384,012 bytes.
TEST(ShortMemory, GivesNoProjection) {
    const ExportedVolume volume(6, 5, 4, 1);
    const float rotation[9] = {3200, 0, 0, 0, 4000, 0, 0, 0, 1};
    TheLibrary().GlobalLock3D(volume.Get());

    const Projection projection = RenderMaximum(volume.Get(), rotation);

    EXPECT_EQ(projection.pixels, nullptr);
    EXPECT_EQ(projection.width, 16001);
    EXPECT_EQ(projection.height, 16001);
    EXPECT_EQ(volume->sliceRows, nullptr);
}

TEST(ShortMemory, IsSaidWhileAFileIsRead) {
    TheLibrary().SetRenderMsgTitle("Another title");
    const TemporaryFile file(std::vector<std::uint8_t>{1});
    CallbackLog log;
    ImageCall call = {.red = file.Name(), .width = 32767, .height = 32767, .is8bit = 0, .log = &log};
    const HeapUse before = MeasureHeaps();

    const ShownBox box = BoxShownBy([&] { EXPECT_EQ(call.RunUnwatched(), nullptr); });

    EXPECT_EQ(box, (ShownBox{"Another title", "Out of memmory", 0x30}));
    EXPECT_EQ(log.calls, (std::vector<CallbackCall>{{101, 0}, {0, 0x42C80000}}));
    EXPECT_LT(MeasureHeaps().bytes, before.bytes + 1000000);
}

} // namespace
