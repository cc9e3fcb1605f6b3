#include "StatusText.h"

#include <gtest/gtest.h>

namespace z3d::viewer {

TEST(StatusText, EndsOfARangeHaveNoExponentAsFarAsSumsReach) {
    EXPECT_EQ(RangeEndText(0), "0");
    EXPECT_EQ(RangeEndText(0.25), "0.25");
    EXPECT_EQ(RangeEndText(999.96), "1000");
    EXPECT_EQ(RangeEndText(18050.5), "18050");
    EXPECT_EQ(RangeEndText(-1234.6), "-1235");
}

} // namespace z3d::viewer
