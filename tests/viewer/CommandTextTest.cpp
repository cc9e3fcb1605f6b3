#include "CommandText.h"

#include <gtest/gtest.h>

#include "Commands.h"

namespace z3d::viewer {

namespace {

const Source kFile = {{L"C:\\scans\\head.nrrd"}, 0};

View FrontView(tools::VoxelType type = tools::VoxelType::Grey8) {
    View view = FirstView({181, 217, 100}, type);
    LookFrom(view, Side::Front);
    return view;
}

} // namespace

TEST(CommandText, SaysNothingThatIsTheDefault) {
    EXPECT_EQ(CommandText(FrontView(), kFile),
              "zentra project C:\\scans\\head.nrrd --mode surface --rotate -90,0,0 -o picture.png");
}

TEST(CommandText, SaysEverythingElse) {
    View view = FrontView();
    view.mode = 5; // blend
    view.Settings().extra = 0.25F;
    view.palette = tools::Palette::Viridis;
    SetWindowLow(view, 10);
    SetRange(view, {0.5F, 100});
    SetCropSide(view, 3, 50);
    EXPECT_EQ(CommandText(view, kFile),
              "zentra project C:\\scans\\head.nrrd --mode blend --transparency 0.25 --window 10:255 --rotate "
              "-90,0,0 "
              "--crop 1:181,1:50,1:100 --range 0.5:100 --palette viridis -o picture.png");
}

TEST(CommandText, AnglesAreReadBackToTheLastBit) {
    View view = FrontView();
    SetAngles(view, {1.0F / 3, 1e-6F, -179.99998F});
    const std::string text = CommandText(view, kFile);
    EXPECT_NE(text.find("--rotate 0.33333334,1e-06,-179.99998 "), std::string::npos) << text;
}

TEST(CommandText, NamesWithBlanksAreQuoted) {
    const std::string text = CommandText(FrontView(), {{L"C:\\my scans\\a.nii.gz"}, 0});
    EXPECT_EQ(text.find("zentra project \"C:\\my scans\\a.nii.gz\" --mode"), 0U) << text;
}

TEST(CommandText, AllSlicesOfAVolumeAreNamed) {
    const std::string text = CommandText(FrontView(), {{L"a.png", L"b.png"}, 0});
    EXPECT_EQ(text.find("zentra project a.png b.png --mode"), 0U) << text;
}

TEST(CommandText, PalettesAreForGreyVolumes) {
    View view = FrontView(tools::VoxelType::Rgb8);
    view.palette = tools::Palette::Fire;
    EXPECT_EQ(CommandText(view, kFile).find("--palette"), std::string::npos);
}

TEST(CommandText, AShrunkVolumeIsShrunkAgain) {
    const std::string text = CommandText(FrontView(), {{L"a.nii"}, 900});
    EXPECT_EQ(text.find("zentra project a.nii --max-diagonal 900 --mode"), 0U) << text;
}

TEST(CommandText, TheMadeUpHeadIsMadeFirst) {
    EXPECT_EQ(CommandText(FrontView(), {}),
              "zentra phantom --size 181x217x100 -o head.nhdr\r\n"
              "zentra project head.nhdr --mode surface --rotate -90,0,0 -o picture.png");
}

} // namespace z3d::viewer
