#include "render/KernelDifferential.h"

#include "render/InstructionSet.h"
#include "support/AlwaysSkipping.h"
#include "support/InstructionSets.h"
#include "support/ProductRenderer.h"
#include "support/SameBits.h"

#include <bit>

namespace z3d::test {

std::ostream& operator<<(std::ostream& out, const KernelCase& kernel) { return out << kernel.name; }

std::vector<KernelCase> AllKernels() {
    return {{"MaxGrey", RenderModeMaximum, 0, 1},
            {"MinGrey", RenderModeMinimum, 0, 1},
            {"SumGrey", RenderModeSum, 0, 1},
            {"SurfaceGrey", RenderModeSurface, 0, 1},
            {"LayersGrey", RenderModeSurface, 0.5f, 1},
            {"BlendGrey", RenderModeBlend, 0.5f, 1},
            {"ContrastGrey", RenderModeContrast, 0, 1},
            {"FirstHitGrey", RenderModeFirstHit, 0, 1},
            {"MaxRgb", RenderModeMaximum, 0, 3},
            {"MinRgb", RenderModeMinimum, 0, 3},
            {"SumRgb", RenderModeSum, 0, 3},
            {"SurfaceRgb", RenderModeSurface, 0, 3},
            {"LayersRgb", RenderModeSurface, 0.5f, 3},
            {"BlendRgb", RenderModeBlend, 0.5f, 3},
            {"ContrastRgb", RenderModeContrast, 0, 3},
            {"FirstHitRgb", RenderModeFirstHit, 0, 3}};
}

::testing::AssertionResult ComparedVolume::IsRenderedAlike(const reference::Request& request) const {
    const reference::Projection expected = reference::Render(plain_, request);
    ::testing::AssertionResult result = ::testing::AssertionSuccess();
    for (const render::InstructionSet set : RunnableInstructionSets()) {
        render::ForceInstructionSet(set);
        result = SameBits(expected, RenderProduct(host_.Get(), request));
        if (result) {
            const AlwaysSkipping forced;
            result = SameBits(expected, RenderProduct(host_.Get(), request));
            if (result) continue;
            result << "\nwith a table of bounds";
        }
        result << "\n" << NameOf(set) << ", " << Describe(request) << "\n" << Describe(plain_);
        break;
    }
    render::ForceInstructionSet(render::BestInstructionSet());
    return result;
}

reference::Request ViewOf(const KernelCase& kernel, const reference::Volume& volume, const Rotation& rotation,
                          float low, float high) {
    reference::Request request = PlainRequest(volume, kernel.mode, rotation);
    request.low = low;
    request.high = high;
    request.extraBits = std::bit_cast<std::uint32_t>(kernel.extra);
    return request;
}

void SetVoxel(reference::Volume& volume, int x, int y, int z, const Colour& colour) {
    for (int channel = 0; channel < volume.bytesPerVoxel; ++channel) {
        VoxelByte(volume, x, y, z, channel) =
            static_cast<std::uint8_t>(colour[static_cast<std::size_t>(channel)]);
    }
}

void Fill(reference::Volume& volume, const Colour& colour) {
    for (std::size_t byte = 0; byte < volume.voxels.size(); ++byte) {
        const std::size_t channel = byte % static_cast<std::size_t>(volume.bytesPerVoxel);
        volume.voxels[byte] = static_cast<std::uint8_t>(colour[channel]);
    }
}

// The suites go through the instruction sets by themselves, and pass over what the processor lacks. Here that shows.
class ComparedInstructionSets : public OnInstructionSet {};

TEST_P(ComparedInstructionSets, RenderWhatThePlainFormRenders) {
    for (const KernelCase& kernel : AllKernels()) {
        const reference::Volume volume = BlobVolume({19, 18, 17, kernel.bytesPerVoxel}, 1);
        reference::Request request =
            PlainRequest(volume, kernel.mode, Rounded(AboutAxis(0, SmallAngle(20.0))));
        request.extraBits = std::bit_cast<std::uint32_t>(kernel.extra);
        EXPECT_TRUE(SameBits(reference::Render(volume, request), RenderProduct(volume, request))) << kernel;
    }
}

INSTANTIATE_TEST_SUITE_P(AllInstructionSets, ComparedInstructionSets,
                         ::testing::ValuesIn(render::kInstructionSets),
                         [](const auto& set) { return NameOf(set.param); });

} // namespace z3d::test
