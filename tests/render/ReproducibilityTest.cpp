// The generators and the reference give the same bits on every platform and in every build: each figure below
// was measured once and has to come out everywhere. A change of a generator changes the figures too.
#include "render/RenderExamples.h"
#include "support/Digest.h"
#include "support/RenderModes.h"

namespace {

using namespace z3d;
using namespace z3d::test;

void AddRequest(Digest& digest, const reference::Request& request) {
    for (const float element : request.rotation) {
        digest.Add(element);
    }
    for (const std::int16_t field :
         {request.mode, request.x0, request.x1, request.y0, request.y1, request.z0, request.z1}) {
        digest.Add(static_cast<std::uint32_t>(field));
    }
    digest.Add(request.high);
    digest.Add(request.low);
    digest.Add(request.extraBits);
}

std::uint64_t DigestOfRenders(RenderMode mode, int bytesPerVoxel) {
    RandomSource random(static_cast<std::uint32_t>(100 * int{mode} + bytesPerVoxel));
    Digest digest;
    for (int i = 0; i < 60; ++i) {
        const VolumeSize size = RandomSize(random, 14, bytesPerVoxel);
        const reference::Volume volume = RandomVolume(random, size);
        const reference::Projection projection =
            reference::Render(volume, RandomRequest(random, volume, mode));
        digest.Add(static_cast<std::uint32_t>(projection.width));
        digest.Add(static_cast<std::uint32_t>(projection.height));
        digest.Add(static_cast<std::uint32_t>(projection.depth));
        for (const float value : projection.pixels) {
            digest.Add(value);
        }
    }
    return digest.Value();
}

TEST(Reproducibility, RequestsHaveTheSameBitsEverywhere) {
    RandomSource random(1);
    const reference::Volume volume = EmptyVolume({9, 8, 7});
    Digest digest;
    for (std::size_t i = 0; i < 2000; ++i) {
        AddRequest(digest, RandomRequest(random, volume, kRenderModes[i % kRenderModeCount]));
    }

    EXPECT_EQ(digest.Value(), 0xBFDB2AEBC81ECABDu);
}

TEST(Reproducibility, VolumesHaveTheSameBytesEverywhere) {
    RandomSource random(2);
    Digest digest;
    for (int i = 0; i < 100; ++i) {
        const VolumeSize size = RandomSize(random, 12, 1 + i % 4);
        for (const std::uint8_t byte : RandomVolume(random, size).voxels) {
            digest.Add(byte);
        }
    }

    EXPECT_EQ(digest.Value(), 0x3140955794FF47A0u);
}

TEST(Reproducibility, ReferencePicturesHaveTheSameBitsEverywhere) {
    static constexpr std::array<std::array<std::uint64_t, 2>, kRenderModeCount> kDigests = {
        {{0xAD17E37B41E00B0Du, 0x01DECB5A8647B13Eu},
         {0x4CFBA9886ABCF374u, 0x0DB3C2E42C9CD28Eu},
         {0x7F7C9B12FBDA9BFDu, 0x2A1AF3D614510DE8u},
         {0x1DF006B082B02EBBu, 0x18472E58637B9CD0u},
         {0x2D0A060514E587D7u, 0x0AC8E09E6EFB58BEu},
         {0x5721252701BA8936u, 0x2AE6728888D785AAu},
         {0xB6409E015DBCADB4u, 0x0182CF446BF54127u}}};
    for (const RenderMode mode : kRenderModes) {
        const auto& expected = kDigests[static_cast<std::size_t>(mode)];

        EXPECT_EQ(DigestOfRenders(mode, 1), expected[0]) << "mode " << mode;
        EXPECT_EQ(DigestOfRenders(mode, 3), expected[1]) << "mode " << mode;
    }
}

} // namespace
