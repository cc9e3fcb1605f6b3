#include "frame/MessageTitle.h"

#include "support/Refusals.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace z3d;
using namespace z3d::test;

class MessageTitle : public ::testing::Test {
protected:
    void SetUp() override { before_ = OutstandingInTotal(); }
    void TearDown() override {
        RefuseNothing();
        frame::ReleaseMessageTitle();
        EXPECT_EQ(OutstandingInTotal(), before_);
    }

private:
    std::int64_t before_ = 0;
};

TEST_F(MessageTitle, IsTheLibrarysNameAtFirst) { EXPECT_STREQ(frame::MessageTitle(), "Zentra3DRendering"); }

TEST_F(MessageTitle, KeepsACopyAndReturnsIt) {
    std::string hosts = "Viewer";

    const char* copy = frame::SetRenderMsgTitle(hosts.c_str());
    hosts = "changed";

    EXPECT_STREQ(copy, "Viewer");
    EXPECT_EQ(frame::MessageTitle(), copy);
}

TEST_F(MessageTitle, KeepsOneCopyAtATime) {
    const std::int64_t before = Outstanding(platform::Resource::Heap);

    frame::SetRenderMsgTitle("first");
    const char* second = frame::SetRenderMsgTitle("second");

    EXPECT_STREQ(second, "second");
    EXPECT_EQ(frame::MessageTitle(), second);
    EXPECT_EQ(Outstanding(platform::Resource::Heap), before + 1);
}

TEST_F(MessageTitle, MayBeGivenBackAsItIs) {
    const char* first = frame::SetRenderMsgTitle("a title of the host");

    const char* again = frame::SetRenderMsgTitle(first);
    EXPECT_STREQ(again, "a title of the host");

    EXPECT_STREQ(frame::SetRenderMsgTitle(again + 2), "title of the host");
}

TEST_F(MessageTitle, StaysAsItIsForNull) {
    EXPECT_EQ(frame::SetRenderMsgTitle(nullptr), nullptr);

    const char* title = frame::SetRenderMsgTitle("Viewer");

    EXPECT_EQ(frame::SetRenderMsgTitle(nullptr), title);
    EXPECT_STREQ(frame::MessageTitle(), "Viewer");
}

TEST_F(MessageTitle, MayBeEmpty) {
    EXPECT_STREQ(frame::SetRenderMsgTitle(""), "");
    EXPECT_STREQ(frame::MessageTitle(), "");
}

TEST_F(MessageTitle, KeepsTheOldOneWhenTheCopyCannotBeHad) {
    const char* old = frame::SetRenderMsgTitle("old");

    RefuseRequest(0);

    EXPECT_EQ(frame::SetRenderMsgTitle("new"), nullptr);
    EXPECT_EQ(frame::MessageTitle(), old);
    EXPECT_STREQ(frame::MessageTitle(), "old");
}

TEST_F(MessageTitle, IsTheLibrarysNameAgainAfterItsRelease) {
    frame::SetRenderMsgTitle("Viewer");

    frame::ReleaseMessageTitle();
    frame::ReleaseMessageTitle();

    EXPECT_STREQ(frame::MessageTitle(), "Zentra3DRendering");
}

} // namespace
