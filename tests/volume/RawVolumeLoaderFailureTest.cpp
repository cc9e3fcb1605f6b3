// How a load ends without a volume: what the user and the host are told, and that nothing is left over.
#include "volume/RawVolumeLoader.h"

#include "support/RecordingHost.h"
#include "support/Refusals.h"
#include "support/Stacks.h"
#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using namespace z3d;
using namespace z3d::test;
using frame::OwnedVolume;
using platform::Resource;
using primitives::ValueRange;
using volume::VolumeSize;

const std::vector<std::uint8_t> kSamples = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

struct Sizes {
    VolumeSize stored;
    VolumeSize size;
};

// No resampling, in plane, in depth, both.
constexpr Sizes kEveryPath[] = {
    {{2, 2, 3}, {2, 2, 3}}, {{2, 2, 3}, {3, 2, 3}}, {{2, 2, 3}, {2, 2, 2}}, {{2, 2, 3}, {2, 3, 4}}};

OwnedVolume Load(const std::string& name, const Sizes& sizes, const frame::Host& host, bool is8bit = true) {
    ValueRange running = {9, 8};
    ValueRange range;
    OwnedVolume volume =
        volume::LoadRawVolume({name.c_str(), sizes.stored, is8bit}, sizes.size, running, range, host);
    if (!volume) {
        EXPECT_EQ(running.max, 9);
        EXPECT_EQ(running.min, 8);
    }
    return volume;
}

TEST(RawVolumeLoaderFailure, SaysThatAFileCannotBeOpened) {
    for (const std::string& name :
         {MissingFileName(), FolderName(), std::string(40000, 'x'), std::string()}) {
        RecordingHost host;
        EXPECT_EQ(Load(name, kEveryPath[0], host.Get()), nullptr);
        EXPECT_EQ(host.Events(), Transcript{Warning("Cannot open file")}) << name.substr(0, 80);
    }
}

TEST(RawVolumeLoaderFailure, CanBeCancelledAtEveryCall) {
    const TemporaryFile file(kSamples);
    for (const Sizes& sizes : kEveryPath) {
        RecordingHost whole;
        EXPECT_TRUE(Load(file.Name(), sizes, whole.Get()));
        for (int call = 0; call < whole.Calls(); ++call) {
            const std::int64_t before = OutstandingInTotal();
            RecordingHost host(call);
            EXPECT_EQ(Load(file.Name(), sizes, host.Get()), nullptr);
            const Transcript expected(whole.Events().begin(), whole.Events().begin() + call + 1);
            EXPECT_EQ(host.Events(), expected);
            EXPECT_EQ(OutstandingInTotal(), before);
        }
    }
}

TEST(RawVolumeLoaderFailure, ReadsNothingWhenItIsCancelledAtTheStart) {
    const TemporaryFile file(kSamples);
    RecordingHost host(0);

    RefuseNothing();
    EXPECT_EQ(Load(file.Name(), kEveryPath[0], host.Get()), nullptr);

    EXPECT_EQ(RequestsSeen(), 1); // the file's opening
}

// The first phase is over with its 100 percent. What fails in the second says nothing; what fails in measuring
// its result does.
const char* ExpectedWarning(const Transcript& events) {
    if (events.front() != Start()) return "Cannot open file";
    const auto phasesOver = std::count(events.begin(), events.end(), Percent(100));
    return phasesOver == 1 ? "" : "Out of memmory";
}

TEST(RawVolumeLoaderFailure, SaysThatMemoryIsShortExceptInTheSecondPhase) {
    const TemporaryFile file(kSamples);
    for (const Sizes& sizes : kEveryPath) {
        ForEveryRefusal([&](bool refused) {
            RecordingHost host;
            if (Load(file.Name(), sizes, host.Get())) return;
            ASSERT_TRUE(refused);
            EXPECT_EQ(host.Events().back().warning, ExpectedWarning(host.Events()));
        });
    }
}

// Exactly the reads can be refused without a failure.
TEST(RawVolumeLoaderFailure, FailsForEveryRefusedRequestExceptReads) {
    const TemporaryFile file(kSamples);
    for (const Sizes& sizes : kEveryPath) {
        int survived = 0;
        ForEveryRefusal([&](bool refused) {
            RecordingHost host;
            if (Load(file.Name(), sizes, host.Get()) && refused) ++survived;
        });
        EXPECT_EQ(survived, sizes.stored.depth);
    }
}

TEST(RawVolumeLoaderFailure, WarnsOnceEverythingHasBeenReleased) {
    const TemporaryFile file(kSamples);
    const std::int64_t before = OutstandingInTotal();
    int warnings = 0;
    for (const Sizes& sizes : kEveryPath) {
        ForEveryRefusal([&](bool) {
            RecordingHost host;
            std::int64_t left = -1;
            host.atEachEvent = [&] { left = OutstandingInTotal() - before; };
            (void)Load(file.Name(), sizes, host.Get());
            if (host.Events().back().warning.empty()) return;
            ++warnings;
            EXPECT_EQ(left, 0);
        });
    }
    EXPECT_GT(warnings, 40);
}

TEST(RawVolumeLoaderFailure, ReturnsNullForFilesWithoutSamples) {
    const TemporaryFile file(kSamples);
    constexpr Sizes kNothing[] = {{{0, 2, 2}, {1, 2, 2}},
                                  {{2, 0, 2}, {2, 1, 2}},
                                  {{2, 2, 0}, {2, 2, 1}},
                                  {{-1, 2, 2}, {1, 2, 2}},
                                  {{2, -1, 2}, {2, 1, 2}},
                                  {{2, 2, -1}, {2, 2, 1}},
                                  {{-32768, -32768, -32768}, {1, 1, 1}}};
    for (const Sizes& sizes : kNothing) {
        RecordingHost host;
        RefuseNothing();
        EXPECT_EQ(Load(file.Name(), sizes, host.Get()), nullptr);
        EXPECT_EQ(host.Events(), Transcript{Start()});
        EXPECT_EQ(RequestsSeen(), 1);
    }
}

TEST(RawVolumeLoaderFailure, ReturnsNullForSizesThatNoVolumeHas) {
    const TemporaryFile file(kSamples);
    constexpr Sizes kImpossible[] = {{{2, 2, 2}, {0, 2, 2}},     {{2, 2, 2}, {2, -1, 2}},
                                     {{2, 2, 2}, {2, 2, -1}},    {{65536, 1, 1}, {1, 1, 1}},
                                     {{1, 65537, 1}, {1, 1, 1}}, {{1, 1, 70000}, {1, 1, 1}},
                                     {{1, 1, 1}, {65536, 1, 1}}, {{1, 1, 1}, {1, 1, INT32_MAX}}};
    for (const Sizes& sizes : kImpossible) {
        RecordingHost host;
        EXPECT_EQ(Load(file.Name(), sizes, host.Get()), nullptr);
        EXPECT_EQ(host.Events(), Transcript{Start()});
    }
}

// 32768 * 32769 floats are 2^32 + 131072 bytes: the block of the wrapped product must not be read into.
TEST(RawVolumeLoaderFailure, SaysThatMemoryIsShortForSlicesOfMoreThan32Bits) {
    const TemporaryFile file(kSamples);
    RecordingHost host;

    EXPECT_EQ(Load(file.Name(), {{32768, 32769, 1}, {1, 1, 1}}, host.Get(), false), nullptr);

    EXPECT_EQ(host.Events(), (Transcript{Start(), Warning("Out of memmory")}));
}

// Slices alive at each call: the volume's, and between calls one being read and one being made.
TEST(RawVolumeLoaderMemory, HoldsNoMoreSlicesThanItHasTo) {
    const TemporaryFile file(kSamples);
    const std::int64_t before = Outstanding(Resource::Block);
    RecordingHost host;
    std::vector<std::int64_t> blocks;
    host.atEachEvent = [&] { blocks.push_back(Outstanding(Resource::Block) - before); };
    RefuseNothing();

    EXPECT_TRUE(Load(file.Name(), {{2, 2, 3}, {3, 3, 6}}, host.Get()));

    // Three slices of the file, then six of the result while those below the current position go.
    EXPECT_EQ(blocks, (std::vector<std::int64_t>{0, 1, 2, 3, 3, 4, 5, 6, 6, 7, 7}));
    EXPECT_EQ(PeakOutstanding(Resource::Block) - before, 7);
    EXPECT_EQ(PeakOutstanding(Resource::FileOpen), 1);
}

TEST(RawVolumeLoaderMemory, HoldsTheSliceThatIsReadBesideTheOneThatIsMade) {
    const TemporaryFile file(kSamples);
    const std::int64_t before = Outstanding(Resource::Block);
    RecordingHost host;
    RefuseNothing();

    EXPECT_TRUE(Load(file.Name(), {{2, 2, 3}, {3, 3, 3}}, host.Get()));

    EXPECT_EQ(PeakOutstanding(Resource::Block) - before, 2 + 2);
}

TEST(RawVolumeLoaderMemory, HasClosedTheFileBeforeTheSecondPhase) {
    const TemporaryFile file(kSamples);
    RecordingHost host;
    std::vector<std::int64_t> files;
    host.atEachEvent = [&] { files.push_back(Outstanding(Resource::FileOpen)); };

    EXPECT_TRUE(Load(file.Name(), {{2, 2, 3}, {2, 2, 2}}, host.Get()));

    EXPECT_EQ(files, (std::vector<std::int64_t>{1, 1, 1, 1, 0, 0, 0}));
}

} // namespace
