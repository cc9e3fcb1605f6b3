#include "frame/Image2D.h"

#include "support/Refusals.h"

#include <gtest/gtest.h>

namespace {

using namespace z3d;

TEST(Image2D, KeepsTheLow16BitsOfWidthAndHeight) {
    Image2D* image = frame::GlobalAlloc2D(65536 + 3, 0x20002, 4);

    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->width, 3);
    EXPECT_EQ(image->height, 2);
    EXPECT_EQ(image->bytesPerPixel, 4u);
    EXPECT_EQ(image->rows, nullptr);

    frame::GlobalFree2D(image);
}

} // namespace
