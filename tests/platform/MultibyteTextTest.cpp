#include "platform/MultibyteText.h"

#include <gtest/gtest.h>

namespace {

using z3d::platform::IsSameText;

TEST(MultibyteText, ComparesEveryCharacterWithItsCase) {
    EXPECT_TRUE(IsSameText("C:\\scans\\head.raw", "C:\\scans\\head.raw"));
    EXPECT_TRUE(IsSameText("", ""));
    EXPECT_FALSE(IsSameText("C:\\scans\\head.raw", "c:\\scans\\head.raw"));
    EXPECT_FALSE(IsSameText("C:\\scans\\head.raw", "C:/scans/head.raw"));
    EXPECT_FALSE(IsSameText("head.raw", "head.ra"));
    EXPECT_FALSE(IsSameText("", "head.raw"));
}

TEST(MultibyteText, ComparesBytesBeyondAsciiToo) {
    EXPECT_TRUE(IsSameText("caf\xE9", "caf\xE9"));
    EXPECT_FALSE(IsSameText("caf\xE9", "caf\xE8"));
}

} // namespace
