// Offsets of slices for gathers, and pictures of volumes that have none.
#include "render/voxels/SliceOffsets.h"

#include "frame/Image2D.h"
#include "render/KernelDifferential.h"
#include "render/tables/ContrastScores.h"
#include "support/InstructionSets.h"
#include "support/ProductRenderer.h"
#include "support/Refusals.h"
#include "support/SameBits.h"

#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;

constexpr bool kIs64Bit = sizeof(void*) == 8;

using Slices = std::vector<const std::uint8_t*>;

render::SliceOffsets OffsetsOf(const Slices& slices, std::uint64_t sliceBytes) {
    return {slices.data(), static_cast<std::int32_t>(slices.size()), sliceBytes};
}

// At addresses at which nothing has to be: offsets are formed from addresses alone.
const std::uint8_t* At(std::uint64_t address) {
    return reinterpret_cast<const std::uint8_t*>(static_cast<std::uintptr_t>(address));
}

// As a gather does it: the offset within the slice wraps at 32 bits, and then counts as signed.
const std::uint8_t* Reached(const render::GatheredSlices& slices, std::size_t z, std::uint32_t offset) {
    const auto added = static_cast<std::int32_t>(slices.offsets[z] + offset);
    return At(slices.origin + static_cast<std::uintptr_t>(std::intptr_t{added}));
}

TEST(SliceOffsets, LeadToEveryByteOfASlice) {
    if (!kIs64Bit) GTEST_SKIP() << "none are made";
    const Slices slices = {At(0x70001000), At(0x10000), At(0x7FFEF000), At(0x70002000)};

    const render::SliceOffsets offsets = OffsetsOf(slices, 0x1000);

    const render::GatheredSlices found = offsets.Get();
    ASSERT_NE(found.offsets, nullptr);
    for (std::size_t z = 0; z < slices.size(); ++z) {
        for (const std::uint32_t offset : {0u, 1u, 0xFFFu})
            EXPECT_EQ(Reached(found, z, offset), slices[z] + offset) << z;
    }
}

TEST(SliceOffsets, ReachFourGigabytesAndNoMore) {
    if (!kIs64Bit) GTEST_SKIP() << "none are made";
    // From the first byte of the lower slice to behind the last of the upper one.
    const Slices slices = {At(0x7F0100002000), At(0x7F0000003000)};

    const render::SliceOffsets fitting = OffsetsOf(slices, 0x1000);
    const render::SliceOffsets tooLarge = OffsetsOf(slices, 0x1001);

    ASSERT_NE(fitting.Get().offsets, nullptr);
    for (const std::uint32_t offset : {0u, 0xFFFu}) {
        EXPECT_EQ(Reached(fitting.Get(), 0, offset), slices[0] + offset);
        EXPECT_EQ(Reached(fitting.Get(), 1, offset), slices[1] + offset);
    }
    EXPECT_EQ(tooLarge.Get().offsets, nullptr);
}

TEST(SliceOffsets, AreNotMadeIn32Bits) {
    if (kIs64Bit) GTEST_SKIP() << "addresses are no offsets";

    EXPECT_EQ(OffsetsOf({At(0x10000)}, 0x1000).Get().offsets, nullptr);
}

TEST(SliceOffsets, AreMissingWhereMemoryIsShort) {
    if (!kIs64Bit) GTEST_SKIP() << "none are made";
    RefuseRequest(0);

    const render::SliceOffsets offsets = OffsetsOf({At(0x10000)}, 0x1000);

    RefuseNothing();
    EXPECT_EQ(offsets.Get().offsets, nullptr);
}

// Where scores have none they are gathered by addresses, which nothing but the time would show.
TEST(SliceOffsets, AreMadeForScoresWhereTheyAreGathered) {
    if (!kIs64Bit) GTEST_SKIP() << "none are made";
    const HostVolume host(5, 4, 3, 1);
    const std::vector<std::uint8_t> voxels(5 * 4 * 3);
    const Slices slices = {&voxels[0], &voxels[20], &voxels[40]};
    const render::ProjectionRenderer view(host.Get(), kIdentity.data(), {}, 0);
    for (const bool isGathered : {false, true}) {
        const render::Projection projection = {
            view, {slices.data(), 5, 4, 3, isGathered}, {}, nullptr, render::CurrentSkipPolicy()};
        render::ContrastScores bytes(projection, render::GreyWindow({0, 255}));
        render::ContrastScores words(projection, render::GreyWindow({0, 255}));
        ASSERT_TRUE(bytes.MakeBytes());
        ASSERT_TRUE(words.MakeWords());
        for (const auto* scores : {&bytes, &words}) {
            const render::VoxelGrid grid = scores->Grid();
            EXPECT_EQ(grid.isGathered, isGathered);
            ASSERT_EQ(grid.gathered.offsets != nullptr, isGathered);
            for (std::size_t z = 0; isGathered && z < slices.size(); ++z)
                EXPECT_EQ(Reached(grid.gathered, z, 0), grid.slices[z]) << z;
        }
    }
}

class GatheredViews : public KernelDifferential {};

// Gathers by addresses of 64 bits give what those by offsets do: with each request refused in turn, that for the
// offsets is among them.
TEST_P(GatheredViews, WithoutOffsets) {
    if (!IsGathering()) GTEST_SKIP() << "gathers are not in use";
    RandomSource random(9);
    const reference::Volume volume = RandomVolume(random, Size(23, 21, 50));
    const HostVolume host(volume);
    const reference::Request request = ViewOf(
        volume, Rounded(Product(AboutAxis(0, SmallAngle(20)), AboutAxis(1, SmallAngle(30)))), 3.5f, 700.5f);
    const reference::Projection expected = reference::Render(volume, request);
    int rendered = 0;
    ForEveryRefusal([&](bool) {
        const reference::Projection projection = RenderProduct(host.Get(), request);
        // The slice whose lock was refused keeps its unfilled row table until it is unlocked.
        for (std::size_t z = 0; z < 50; ++z)
            frame::GlobalUnlock2D(host->slices[z]);
        if (!projection.rendered) return;
        ++rendered;
        EXPECT_TRUE(SameBits(expected, projection));
    });
    // With nothing refused, and in 64 bits without the offsets.
    EXPECT_GE(rendered, kIs64Bit ? 2 : 1);
}

INSTANTIATE_TEST_SUITE_P(AllKernels, GatheredViews, ::testing::ValuesIn(AllKernels()),
                         [](const auto& kernel) { return std::string(kernel.param.name); });

} // namespace
