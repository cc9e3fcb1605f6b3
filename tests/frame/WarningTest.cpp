#include "frame/Warning.h"

#include "frame/MessageTitle.h"
#include "support/MessageBoxes.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d;
using namespace z3d::test;

TEST(Warning, HasTheTextsThatHostsKnow) {
    EXPECT_STREQ(frame::kCannotOpenFile, "Cannot open file");
    EXPECT_STREQ(frame::kOutOfMemory, "Out of memmory");
}

TEST(Warning, IsShownUnderTheMessageTitle) {
    frame::SetRenderMsgTitle("Viewer");

    const ShownBox box = BoxShownBy([] { frame::ShowWarning("Cannot open file"); });
    frame::ReleaseMessageTitle();

    EXPECT_EQ(box, (ShownBox{"Viewer", "Cannot open file", 0x30}));
}

TEST(Warning, IsShownUnderTheLibrarysNameByDefault) {
    const ShownBox box = BoxShownBy([] { frame::ShowWarning("Out of memmory"); });

    EXPECT_EQ(box, (ShownBox{"Zentra3DRendering", "Out of memmory", 0x30}));
}

} // namespace
