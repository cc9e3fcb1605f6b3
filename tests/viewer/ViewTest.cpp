#include "View.h"

#include <gtest/gtest.h>

#include <limits>

#include "Failure.h"
#include "State.h"

namespace z3d::viewer {

using namespace tools;

namespace {

constexpr VolumeSize kSize = {181, 217, 100};

View GreyView() { return FirstView(kSize, VoxelType::Grey8); }

void SetMode(View& view, const char* name) {
    view.mode = static_cast<size_t>(&ModeNamed(name) - Modes().data());
}

} // namespace

TEST(View, HasATitleForEveryMode) {
    EXPECT_EQ(Modes().size(), kModeCount);
    EXPECT_STREQ(Modes()[0].name, "max");
    EXPECT_STREQ(Modes()[7].name, "first");
}

TEST(View, BeginsWithTheWholeVolumeAsASurface) {
    const View view = GreyView();
    EXPECT_STREQ(view.Mode().name, "surface");
    EXPECT_FALSE(IsCropped(view));
    EXPECT_EQ(CropSide(view, 5), 100);
    EXPECT_EQ(view.Settings().window.low, 80);
    EXPECT_EQ(view.Settings().range.kind, RangeKind::OfMode);
}

TEST(View, LooksAtTheFrontAlongFallingY) {
    View view = GreyView();
    LookFrom(view, Side::Front);
    const Rotation rotation = RenderedRotation(view);
    EXPECT_EQ(rotation[7], -1);
    EXPECT_EQ(rotation[5], 1); // z is up
}

TEST(View, LooksAtTheLeftFromWhereXEnds) {
    View view = GreyView();
    LookFrom(view, Side::Left);
    EXPECT_EQ(RenderedRotation(view)[6], -1);
}

TEST(View, LooksAtTheTopFromWhereZEnds) {
    View view = GreyView();
    LookFrom(view, Side::Top);
    EXPECT_EQ(RenderedRotation(view)[8], -1);
    EXPECT_EQ(RenderedRotation(view)[4], 1); // y is up
}

TEST(View, OppositeSidesLookTheOtherWay) {
    const std::pair<Side, Side> pairs[] = {
        {Side::Front, Side::Back}, {Side::Left, Side::Right}, {Side::Top, Side::Bottom}};
    for (const auto& [side, opposite] : pairs) {
        View one = GreyView();
        View other = GreyView();
        LookFrom(one, side);
        LookFrom(other, opposite);
        for (size_t i = 6; i < 9; ++i)
            EXPECT_NEAR(RenderedRotation(one)[i], -RenderedRotation(other)[i], 1e-12);
    }
}

TEST(View, EveryModeKeepsItsOwnSettings) {
    View view = GreyView();
    SetWindowLow(view, 60);
    SetMode(view, "max");
    EXPECT_EQ(view.Settings().window.low, 0);
    SetMode(view, "surface");
    EXPECT_EQ(view.Settings().window.low, 60);
}

TEST(View, DarkestAndFirstVoxelsAreNotThoseOfTheEmptinessAround) {
    View view = GreyView();
    for (const char* mode : {"min", "first"}) {
        SetMode(view, mode);
        EXPECT_EQ(view.Settings().window.low, 1) << mode;
        EXPECT_EQ(view.Settings().window.high, 255) << mode;
    }
}

TEST(View, EndsOfTheWindowPushEachOther) {
    View view = GreyView();
    SetWindowLow(view, 300);
    EXPECT_EQ(view.Settings().window.low, 256);
    EXPECT_EQ(view.Settings().window.high, 256);
    SetWindowHigh(view, 20);
    EXPECT_EQ(view.Settings().window.low, 20);
    EXPECT_EQ(view.Settings().window.high, 20);
}

TEST(View, SidesOfTheCropBoxPushEachOtherAndStayInside) {
    View view = GreyView();
    SetCropSide(view, 0, 100);
    SetCropSide(view, 1, 50);
    EXPECT_EQ(CropSide(view, 0), 50);
    SetCropSide(view, 4, 1000);
    EXPECT_EQ(CropSide(view, 4), 100);
    SetCropSide(view, 4, -3);
    EXPECT_EQ(CropSide(view, 4), 1);
    EXPECT_TRUE(IsCropped(view));
}

TEST(View, ARangeIsNeverEmptyOrInfinite) {
    View view = GreyView();
    SetRange(view, {5, 5});
    EXPECT_LT(view.Settings().range.fixed.low, view.Settings().range.fixed.high);
    const RangeChoice before = view.Settings().range;
    SetRange(view, {0, std::numeric_limits<float>::infinity()});
    SetRange(view, {-3e38F, 3e38F});
    EXPECT_EQ(view.Settings().range.fixed.high, before.fixed.high);
}

TEST(View, AnotherVolumeIsSeenFromTheSameSideInTheSameMode) {
    State state;
    ShowVolume(state, {}, kSize, VoxelType::Grey8);
    SetMode(state.view, "blend");
    LookFrom(state.view, Side::Top);
    SetCropSide(state.view, 0, 20);
    ShowVolume(state, {}, {10, 20, 30}, VoxelType::Rgb8);
    EXPECT_STREQ(state.view.Mode().name, "blend");
    EXPECT_EQ(state.view.angles, (Angles{0, 180, 0}));
    EXPECT_EQ(CropSide(state.view, 1), 10);
    EXPECT_EQ(state.view.Settings().window.high, 765);
}

TEST(View, ResetKeepsModeAndPalette) {
    State state;
    ShowVolume(state, {}, kSize, VoxelType::Grey8);
    const View first = state.view;
    state.view.palette = Palette::Fire;
    state.zoom = 3;
    SetCropSide(state.view, 0, 20);
    SetRange(state.view, {3, 4});
    LookFrom(state.view, Side::Back);
    ResetAll(state);
    EXPECT_EQ(state.zoom, kFitZoom);
    EXPECT_TRUE(SameProjection(state.view, first));
    EXPECT_EQ(state.view.palette, Palette::Fire);
    EXPECT_EQ(state.view.Settings().range.kind, RangeKind::OfMode);
}

TEST(View, OnlyColoursDifferWithAnotherRange) {
    View other = GreyView();
    SetRange(other, {0, 2});
    EXPECT_TRUE(SameProjection(GreyView(), other));
    EXPECT_FALSE(SamePicture(GreyView(), other));
    SetCropSide(other, 2, 5);
    EXPECT_FALSE(SameProjection(GreyView(), other));
}

} // namespace z3d::viewer
