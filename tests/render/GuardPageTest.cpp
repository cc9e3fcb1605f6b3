// Nothing is read or written beside the memory that a projection is given: each slice, the tables of slices, the
// pixels and all scratch lie directly before or behind pages that cannot be accessed.
#include "render/InstructionSet.h"
#include "render/KernelDifferential.h"
#include "render/Projection.h"
#include "render/voxels/SliceOffsets.h"
#include "support/AlwaysSkipping.h"
#include "support/GuardedBytes.h"
#include "support/GuardedHeap.h"
#include "support/InstructionSets.h"
#include "support/ProductRenderer.h"
#include "support/SameBits.h"

#include <cstdlib>
#include <cstring>

namespace {

using namespace z3d;
using namespace z3d::test;

// The slices of a volume, each in guarded memory of its own.
class GuardedSlices {
public:
    GuardedSlices(const reference::Volume& volume, GuardedEnd end)
        : depth_(volume.depth),
          bytes_(volume.voxels.size() / static_cast<std::size_t>(depth_)),
          addresses_(static_cast<std::size_t>(depth_) * sizeof(std::uint8_t*), end) {
        for (std::size_t z = 0; z < static_cast<std::size_t>(depth_); ++z) {
            const GuardedBytes& slice = slices_.emplace_back(bytes_, end);
            std::memcpy(slice.As<std::uint8_t>(), volume.voxels.data() + z * bytes_, bytes_);
            addresses_.As<const std::uint8_t*>()[z] = slice.As<std::uint8_t>();
        }
    }
    const std::uint8_t* const* Get() const { return addresses_.As<const std::uint8_t*>(); }
    render::SliceOffsets Offsets() const { return {Get(), depth_, bytes_}; }

private:
    const std::int32_t depth_;
    const std::size_t bytes_;
    std::vector<GuardedBytes> slices_;
    GuardedBytes addresses_;
};

// How slices are found: by their offsets, as nearly always, or by their addresses, where there are no offsets.
enum class Finding { ByOffsets, ByAddresses };

// On every instruction set that ComparedInstructionSets does not show as skipped.
class GuardPages : public KernelDifferential {
protected:
    // Slices, their tables, pixels and scratch in guarded memory.
    static reference::Projection RenderGuarded(const HostVolume& host, const GuardedSlices& slices,
                                               Finding finding, GuardedEnd end,
                                               const reference::Request& request) {
        const render::CropBox crop = {request.x0 - 1, request.x1 - 1, request.y0 - 1,
                                      request.y1 - 1, request.z0 - 1, request.z1 - 1};
        const render::ProjectionRenderer view(host.Get(), request.rotation.data(), crop, 0);
        const auto floats = static_cast<std::size_t>(3 * view.outputWidth * view.outputHeight);
        const GuardedBytes pixels(floats * sizeof(float), end);
        const float extra = GetParam().extra;
        const GuardedHeap heap(end);
        const render::SliceOffsets offsets =
            finding == Finding::ByOffsets ? slices.Offsets() : render::SliceOffsets();
        const render::Projection projection = {view,
                                               {slices.Get(), view.volumeWidth, view.volumeHeight,
                                                view.volumeDepth, IsGathering(), offsets.Get()},
                                               {request.high, request.low, extra},
                                               pixels.As<float>(),
                                               render::CurrentSkipPolicy()};
        const render::ModeKernels* kernels =
            render::KernelsOfMode(render::CurrentKernels(), request.mode, extra);
        (BytesPerVoxel() == 3 ? kernels->colour : kernels->grey)(projection);
        return {view.outputWidth, view.outputHeight, 0, true,
                std::vector<float>(pixels.As<float>(), pixels.As<float>() + floats)};
    }

    // In 32 bits, and where nothing is gathered, there is one way.
    static std::vector<Finding> FindingsInUse() {
        if (IsGathering() && sizeof(void*) == 8) return {Finding::ByOffsets, Finding::ByAddresses};
        return {Finding::ByOffsets};
    }

    static std::vector<reference::Request> Views(const reference::Volume& volume, RandomSource& random) {
        std::vector<reference::Request> views = {
            ViewOf(volume, kIdentity), ViewOf(volume, Rounded(AboutAxis(0, SmallAngle(20.0)))),
            ViewOf(volume, Rounded(LookingAlong(0, false))),
            ViewOf(volume, Rounded(LookingAlong(1, true)), 20.0f, 90.0f),
            ViewOf(volume, Rounded(AboutAxis(2, Quarters(1))), 200.0f, 255.0f)};
        for (int index = 0; index < 3; ++index) {
            reference::Request request = RandomRequest(random, volume, GetParam().mode);
            request.extraBits = views[0].extraBits;
            views.push_back(request);
        }
        return views;
    }

    static void ExpectNoFault(const reference::Volume& volume, GuardedEnd end, RandomSource& random) {
        const HostVolume host(volume);
        const GuardedSlices slices(volume, end);
        ASSERT_TRUE(sizeof(void*) == 4 || slices.Offsets().Get().offsets != nullptr)
            << "slices lie too far apart";
        for (const reference::Request& request : Views(volume, random)) {
            const reference::Projection expected = reference::Render(volume, request);
            for (const render::InstructionSet set : RunnableInstructionSets()) {
                FaultReport::Say(NameOf(set) + ", " + Describe(request) + ", " + Describe(volume));
                render::ForceInstructionSet(set);
                for (const Finding finding : FindingsInUse()) {
                    const reference::Projection actual = RenderGuarded(host, slices, finding, end, request);
                    ASSERT_TRUE(SameBits(expected, actual)) << Describe(request) << "\n" << Describe(volume);
                    const AlwaysSkipping forced;
                    const reference::Projection skipping = RenderGuarded(host, slices, finding, end, request);
                    ASSERT_TRUE(SameBits(expected, skipping)) << Describe(request) << "\n"
                                                              << Describe(volume);
                }
            }
        }
        render::ForceInstructionSet(render::BestInstructionSet());
    }

    static void ExpectNoFault(GuardedEnd end) {
        const FaultReport report;
        RandomSource random(1);
        // Sides below and above a packet, a row of sixteen and a stretch; slices of whole pages; flat volumes.
        for (const VolumeSize& size :
             {Size(33, 9, 17), Size(16, 16, 5), Size(5, 3, 40), Size(64, 64, 3), Size(1, 1, 7), Size(2, 2, 2),
              Size(19, 1, 3), Size(1, 35, 4), Size(17, 18, 1), Size(15, 7, 2)}) {
            ASSERT_NO_FATAL_FAILURE(ExpectNoFault(NoiseVolume(size, random.Bits()), end, random));
            ASSERT_NO_FATAL_FAILURE(ExpectNoFault(SparseVolume(size, random.Bits()), end, random));
        }
    }
};

// What the tests below rest on.
TEST(GuardedBytesDeathTest, EndTheProgramAtTheFirstByteBesideThem) {
    const auto read = [](GuardedEnd end, std::ptrdiff_t at) {
        const FaultReport report;
        FaultReport::Say("byte " + std::to_string(at));
        const GuardedBytes bytes(100, end);
        const volatile std::uint8_t* byte = bytes.As<std::uint8_t>() + at;
        std::exit(*byte); // 0 where it can be read
    };
    const ::testing::ExitedWithCode faults(FaultReport::kExitCode);
    EXPECT_EXIT(read(GuardedEnd::Last, 100), faults, "guard page was accessed: byte 100");
    EXPECT_EXIT(read(GuardedEnd::First, -1), faults, "guard page was accessed: byte -1");
    EXPECT_EXIT(read(GuardedEnd::Last, 99), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(read(GuardedEnd::First, 0), ::testing::ExitedWithCode(0), "");
}

TEST_P(GuardPages, AreNotTouchedBehindTheLastByte) { ExpectNoFault(GuardedEnd::Last); }

TEST_P(GuardPages, AreNotTouchedBeforeTheFirstByte) { ExpectNoFault(GuardedEnd::First); }

INSTANTIATE_TEST_SUITE_P(AllKernels, GuardPages, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
