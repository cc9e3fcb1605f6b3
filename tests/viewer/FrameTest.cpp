#include "Frame.h"

#include <gtest/gtest.h>

namespace z3d::viewer {

using namespace tools;

namespace {

// 4x3x2 voxels, 10 y + x in both slices; seen without a turn, so the last row is on top.
std::shared_ptr<LoadedVolume> Steps(VoxelType type = VoxelType::Grey8) {
    auto loaded = std::make_shared<LoadedVolume>();
    loaded->size = {4, 3, 2};
    loaded->type = type;
    loaded->volume = MakeVolume(loaded->size, type);
    const VolumeLock lock(*loaded->volume);
    for (int z = 0; z < 2; ++z)
        for (unsigned i = 0; i < 12 * BytesPerVoxel(type); ++i) {
            const unsigned voxel = i / BytesPerVoxel(type);
            lock.Slice(z)[i] = static_cast<unsigned char>(10 * (voxel / 4) + voxel % 4);
        }
    return loaded;
}

View Maximum(const LoadedVolume& volume) {
    View view = FirstView(volume.size, volume.type);
    view.mode = 0;
    LookFrom(view, Side::Bottom);
    return view;
}

} // namespace

TEST(Frame, HoldsPixelsAsTheScreenTakesThem) {
    const auto volume = Steps();
    const auto frame = MakeFrame(Maximum(*volume), volume, nullptr);
    ASSERT_EQ(frame->failure, "");
    ASSERT_EQ(frame->pixels.size(), 12U);
    EXPECT_EQ(frame->pixels[0], 0x141414U); // 20
    EXPECT_EQ(frame->pixels[11], 0x030303U);
}

TEST(Frame, TakesThePaletteForGreyVolumesOnly) {
    const auto grey = Steps();
    View view = Maximum(*grey);
    view.palette = Palette::Viridis;
    SetRange(view, {0, 23});
    EXPECT_EQ(MakeFrame(view, grey, nullptr)->pixels[3], 0xFDE725U);
    const auto colour = Steps(VoxelType::Rgb8);
    view = Maximum(*colour);
    view.palette = Palette::Viridis;
    EXPECT_EQ(MakeFrame(view, colour, nullptr)->pixels[3], 0x171717U);
}

TEST(Frame, OtherColoursNeedNoOtherProjection) {
    const auto volume = Steps();
    View view = Maximum(*volume);
    const auto first = MakeFrame(view, volume, nullptr);
    SetRange(view, {0, 20});
    const auto second = MakeFrame(view, volume, first.get());
    EXPECT_EQ(second->projection, first->projection);
    EXPECT_EQ(second->pixels[0], 0xFFFFFFU);
    SetWindowLow(view, 1);
    EXPECT_NE(MakeFrame(view, volume, second.get())->projection, first->projection);
}

TEST(Frame, OfAnotherVolumeIsProjectedAnew) {
    const auto one = Steps();
    const auto other = Steps();
    const auto first = MakeFrame(Maximum(*one), one, nullptr);
    EXPECT_NE(MakeFrame(Maximum(*other), other, first.get())->projection, first->projection);
}

TEST(Frame, SaysWhatIsUnderThePointer) {
    const auto volume = Steps();
    View view = Maximum(*volume);
    SetWindowLow(view, 5);
    const auto frame = MakeFrame(view, volume, nullptr);
    EXPECT_EQ(ValueAt(*frame, 3, 0), "23");
    EXPECT_EQ(ValueAt(*frame, 3, 2), "nothing there");
    EXPECT_EQ(ValueAt(*frame, 4, 0), "");
    EXPECT_EQ(ValueAt(*frame, 0, -1), "");
}

TEST(Frame, SurfacesThatAreNotThereAreNothingToo) {
    const auto volume = Steps();
    View view = FirstView(volume->size, volume->type);
    LookFrom(view, Side::Bottom);
    EXPECT_EQ(ValueAt(*MakeFrame(view, volume, nullptr), 2, 2), "nothing there");
}

TEST(Frame, NamesAllChannelsOfAColour) {
    const auto volume = Steps(VoxelType::Rgb8);
    EXPECT_EQ(ValueAt(*MakeFrame(Maximum(*volume), volume, nullptr), 0, 0), "20 20 20");
}

} // namespace z3d::viewer
